// Notification ports for a server to hand out: free ones, and one that is taken.
#pragma once

#include <vector>

#include "NyServer/listener/NyServerApp.h"
#include "tests/socket/Peers.h"

// Ports at which nobody listens any more.
inline std::vector<LONG> freePorts(size_t count) {
    const std::vector<peers::RefusingPort> bound(count);
    std::vector<LONG> ports;
    for (const auto& one : bound) ports.push_back(static_cast<LONG>(one.port()));
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
