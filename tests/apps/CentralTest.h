// A central server in this process and clients that talk to it over loopback.
#pragma once

#include <gtest/gtest.h>

#include <array>

#include "apps/central/CentralServer.h"
#include "NyServer/records/NySeMessage.h"
#include "tests/client/ClientTest.h"
#include "tests/support/Gate.h"

// Ports for the notifications that a test does not look at: nobody listens there.
inline const std::vector<LONG>& refusingPorts() {
    static const std::array<peers::RefusingPort, 45> refusing;
    static const std::vector<LONG> ports = [] {
        std::vector<LONG> numbers;
        for (const peers::RefusingPort& one : refusing)
            numbers.push_back(static_cast<LONG>(one.port()));
        return numbers;
    }();
    return ports;
}

inline CentralSettings withPorts(const std::vector<LONG>& ports) {
    CentralSettings settings;
    settings.ports = ports;
    return settings;
}

class CentralTest : public ::testing::Test {
  protected:
    explicit CentralTest(CentralSettings settings = withPorts(refusingPorts()))
        : server(std::move(settings)) {}

    void SetUp() override { ASSERT_EQ(0, server.start(::htonl(INADDR_LOOPBACK), 0)); }

    std::string address() { return "127.0.0.1:" + std::to_string(server.GetPort()); }

    void connect(NySeClientApp& who) {
        ASSERT_EQ(0, who.connect(static_cast<int>(server.GetPort()), "127.0.0.1", -1));
        who.initializeSchema();
    }

    // Connects and registers. The user as the server completed it.
    NySeUser join(NySeClientApp& who, const char* name) {
        connect(who);
        NySeUser user = named(name);
        who.getPortClient(user);
        return user;
    }

    static NySeUser named(const char* name) {
        NySeUser user;
        user.setStrUserName(name);
        user.setSchema(NySe::schema2015);
        return user;
    }

    static NySeMessage message(const char* text) {
        NySeMessage message;
        message.setStrMessage(text);
        return message;
    }

    static std::string textOf(const CString& text) {
        return std::string(text.GetString(), text.GetString() + text.GetLength());
    }

    static std::vector<std::string> namesOf(const NySeUserPtrArray& users) {
        std::vector<std::string> names;
        for (INT_PTR i = 0; i < users.GetSize(); ++i)
            names.push_back(textOf(users[i]->getStrUserName()));
        return names;
    }

    // The names in the server's table of users, in its order.
    static std::vector<std::string> userNames(NySeClientApp& who) {
        NySeUserPtrArray users;
        who.getAllUser(users);
        return namesOf(users);
    }

    static void expectNothingHeld(NySeClientApp& asking) {
        NySeLockArray locks;
        NySeConnectionArray connections;
        asking.getLock(locks);
        asking.getConnection(connections);
        EXPECT_EQ(0, locks.GetSize());
        EXPECT_EQ(0, connections.GetSize());
    }

    // The request with this payload as it goes over the socket.
    static std::string request(LONG action, const std::string& payload) {
        return wireOf(action) + wireOf(static_cast<LONG>(payload.size())) + payload;
    }

    static void send(const NySeClientApp& who, const std::string& bytes) {
        const int length = static_cast<int>(bytes.size());
        ASSERT_EQ(length, ::send(NySeClientAppAccess::socket(who), bytes.data(), length, 0));
    }

    template <class Scalar>
    static Scalar receive(const NySeClientApp& who) {
        Scalar value{};
        const int count = ::recv(NySeClientAppAccess::socket(who), reinterpret_cast<char*>(&value),
                                 sizeof value, MSG_WAITALL);
        EXPECT_EQ(static_cast<int>(sizeof value), count);
        return value;
    }

    CentralServer server;
    NySeClientApp client;
};
