// A client connected to a peer that keeps what it receives.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

class SendingClient : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
        m_client.codes.clear();
    }

    // Closes the connection; all that the peer received.
    std::string arrived() {
        m_client.CloseConnection();
        m_peer.waitForServed(1);
        return m_received;
    }

    std::string m_received;
    peers::Peer m_peer{peers::collecting(m_received)};
    ProbeClient m_client;
};
