// Notification ports for a server to hand out: free ones, one that is taken, and how one is told.
#pragma once

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "NyServer/listener/NyServerApp.h"
#include "tests/apps/FreeRow.h"
#include "tests/client/ClientTest.h"

// Ports at which nobody listens.
inline std::vector<LONG> freePorts(size_t count) {
    std::vector<LONG> ports(count);
    std::iota(ports.begin(), ports.end(), freeRow(static_cast<int>(count)));
    return ports;
}

// Somebody else's listener, on all interfaces as a user's is.
class TakenPort {
  public:
    TakenPort() { EXPECT_EQ(0, m_occupant.Start()); }
    LONG port() const { return static_cast<LONG>(m_occupant.GetBoundPort()); }

  private:
    NyServerApp m_occupant;
};

// What a server answers to a registration: the user with that port.
inline std::string registrationAnswer(LONG port) {
    NySeUser user;
    user.setPort(port);
    return messageOf(user);
}
