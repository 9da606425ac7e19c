// Listeners on ports that follow each other, for a server that is told a range of ports.
#pragma once

#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/apps/FrameListener.h"

class ListenerRow {
  public:
    explicit ListenerRow(size_t count, const ProbeAnswer& answer = &aliveAnswer) {
        for (int attempt = 0; m_sockets.size() < count; ++attempt) {
            if (attempt == 200) throw std::runtime_error("no row of free ports");
            m_sockets = bindRow(count);
        }
        for (const UniqueSocket& socket : m_sockets) {
            ::listen(socket.get(), 5);
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
    // Fewer than `count` when the first has a neighbour that is taken.
    static std::vector<UniqueSocket> bindRow(size_t count) {
        std::vector<UniqueSocket> row;
        row.push_back(peers::bindToLoopback());
        const int first = peers::portOf(row.front());
        for (size_t i = 1; i < count; ++i) {
            UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, 0));
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
            address.sin_port = ::htons(static_cast<unsigned short>(first + static_cast<int>(i)));
            if (::bind(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
                break;
            row.push_back(std::move(socket));
        }
        return row;
    }

    void serve(size_t index) {
        while (!m_isStopping) {
            const SOCKET listening = m_sockets[index].get();
            fd_set readable{};
            FD_SET(listening, &readable);
            timeval step{0, 50'000};
            if (::select(0, &readable, nullptr, nullptr, &step) != 1) continue;
            peers::Connection connection(UniqueSocket(::accept(listening, nullptr, nullptr)),
                                         m_isStopping);
            m_scripts[index]->serve(connection);
        }
    }

    const peers::WinsockSession m_winsock;
    std::vector<UniqueSocket> m_sockets;
    std::vector<std::unique_ptr<FrameScript>> m_scripts;
    std::atomic<long> m_frames = 0;
    std::atomic<bool> m_isStopping = false;
    std::vector<std::thread> m_threads;
};
