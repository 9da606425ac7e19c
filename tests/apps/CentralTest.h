// A central server in this process and clients that talk to it over loopback.
#pragma once

#include <gtest/gtest.h>

#include "apps/central/CentralServer.h"
#include "tests/client/ClientTest.h"

class CentralTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(0, server.start(::htonl(INADDR_LOOPBACK), 0)); }

    void connect(NySeClientApp& who) {
        ASSERT_EQ(0, who.connect(static_cast<int>(server.GetPort()), "127.0.0.1", -1));
        who.initializeSchema();
    }

    static NySeUser named(const char* name) {
        NySeUser user;
        user.setStrUserName(name);
        user.setSchema(NySe::schema2015);
        return user;
    }

    // The names in the server's table of users, in its order.
    static std::vector<std::string> userNames(NySeClientApp& who) {
        NySeUserPtrArray users;
        who.getAllUser(users);
        std::vector<std::string> names;
        for (INT_PTR i = 0; i < users.GetSize(); ++i) {
            const CString& name = users[i]->getStrUserName();
            names.emplace_back(name.GetString(), name.GetString() + name.GetLength());
        }
        return names;
    }

    // True once `condition` holds; waits for it at most 10 s.
    template <class Condition>
    static bool eventually(Condition condition) {
        for (int i = 0; i < 500; ++i) {
            if (condition()) return true;
            ::Sleep(20);
        }
        return condition();
    }

    CentralServer server;
    NySeClientApp client;
};
