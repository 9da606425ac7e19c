// A worker at one end of a connection.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/socket/LocalConnection.h"
#include "tests/socket/ProbeWorker.h"

// A worker at one end of a connection; the test is the peer.
class Worker : public testing::Test {
  protected:
    Worker() : m_peer(m_pair.takeFarEnd()) { m_worker.attach(m_pair.nearEnd()); }

    // What the peer receives once the worker's end is closed.
    std::string arrived() {
        m_pair.closeNear();
        return m_peer.receiveAll();
    }
    void peerSends(std::string_view data) {
        m_peer.send(data);
        awaitBytes(data.size());
    }
    // Until so many bytes can be read at once.
    void awaitBytes(size_t count) {
        for (u_long waiting = 0; waiting < count; ::Sleep(1))
            ASSERT_EQ(::ioctlsocket(m_pair.nearEnd(), FIONREAD, &waiting), 0);
    }
    void awaitPeersEnd() { ASSERT_EQ(m_worker.WaitForReceive(10, 0), 0); }

    // A line received into a buffer of `fill`, cut at what the call says it has stored.
    std::string receiveLine(int maxLen, int timeOut = 1, char fill = '#') {
        m_line.assign(200, fill);
        const int stored = m_worker.ReceiveLine(m_line.data(), maxLen, timeOut);
        EXPECT_TRUE(stored == 0 || m_line[static_cast<size_t>(stored)] == '\0');
        return m_line.substr(0, static_cast<size_t>(stored));
    }

    peers::SocketPair m_pair;
    peers::Connection m_peer;
    ProbeWorker m_worker;
    std::string m_line;
};
