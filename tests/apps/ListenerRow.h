// Listeners on ports that follow each other, for a server that is told a range of ports.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "tests/apps/FrameListener.h"
#include "tests/apps/FreeRow.h"

class ListenerRow {
  public:
    explicit ListenerRow(size_t count, const ProbeAnswer& answer = &aliveAnswer) {
        const int first = freeRow(static_cast<int>(count));
        for (size_t i = 0; i < count; ++i) {
            m_sockets.push_back(listenOn(first + static_cast<int>(i)));
            EXPECT_TRUE(m_sockets.back()) << first;
            m_scripts.push_back(std::make_unique<FrameScript>(
                [this](const ReceivedFrame&) { ++m_frames; }, answer));
        }
        for (size_t i = 0; i < count; ++i) m_threads.emplace_back([this, i] { serve(i); });
    }
    ~ListenerRow() {
        m_isStopping = true;
        for (std::thread& thread : m_threads) thread.join();
    }
    ListenerRow(const ListenerRow&) = delete;
    ListenerRow& operator=(const ListenerRow&) = delete;

    int firstPort() const { return peers::portOf(m_sockets.front()); }
    int lastPort() const { return peers::portOf(m_sockets.back()); }
    // As nycentral wants them.
    std::wstring range() const {
        return std::to_wstring(firstPort()) + L'-' + std::to_wstring(lastPort());
    }

    long frames() const { return m_frames; }
    long probes() const {
        long sum = 0;
        for (const auto& script : m_scripts) sum += script->probes();
        return sum;
    }

  private:
    void serve(size_t index) {
        while (!m_isStopping) {
            const SOCKET listening = m_sockets[index].get();
            fd_set readable{};
            FD_SET(listening, &readable);
            timeval step{0, 50'000};
            if (::select(0, &readable, nullptr, nullptr, &step) != 1) continue;
            peers::Connection connection(NySe::UniqueSocket(::accept(listening, nullptr, nullptr)),
                                         m_isStopping);
            m_scripts[index]->serve(connection);
        }
    }

    const peers::WinsockSession m_winsock;
    std::vector<NySe::UniqueSocket> m_sockets;
    std::vector<std::unique_ptr<FrameScript>> m_scripts;
    std::atomic<long> m_frames = 0;
    std::atomic<bool> m_isStopping = false;
    std::vector<std::thread> m_threads;
};
