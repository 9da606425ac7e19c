#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

// Holds threads back until it is opened, so that a test can look at what happens meanwhile. No wait
// is longer than 60 s.
class Gate {
  public:
    // Waits for the gate to open. False when it did not.
    bool pass() {
        std::unique_lock lock(m_mutex);
        ++m_arrived;
        m_changed.notify_all();
        return m_changed.wait_for(lock, kTimeOut, [this] { return m_isOpen; });
    }

    // Waits until so many threads have come to the gate, this one among them, which opens it. False
    // when they did not come. In place of std::latch, whose wait can miss the last arrival where
    // the system has no futex.
    bool meet(int count) {
        std::unique_lock lock(m_mutex);
        if (++m_arrived == count) m_isOpen = true;
        m_changed.notify_all();
        return m_changed.wait_for(lock, kTimeOut, [this] { return m_isOpen; });
    }

    // Waits until so many threads have come to the gate.
    bool awaitArrivals(int count = 1) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, kTimeOut, [&] { return m_arrived >= count; });
    }

    void open() {
        const std::lock_guard lock(m_mutex);
        m_isOpen = true;
        m_changed.notify_all();
    }

  private:
    static constexpr std::chrono::seconds kTimeOut{60};

    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_arrived = 0;
    bool m_isOpen = false;
};

// Asks again and again, at most as long as said. Whether the answer was yes at last.
template <class Question>
bool eventually(Question question, std::chrono::seconds timeOut = std::chrono::seconds(60)) {
    const auto deadline = std::chrono::steady_clock::now() + timeOut;
    while (!question()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}
