// What takes the place of a host's window on systems without windows: a function.
#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "NyServer/listener/NyServerApp.h"
#include "tests/listener/PostedMessage.h"

// Keeps the notifications that it receives. It must live as long as it is attached.
class HostWindow {
  public:
    // The listener must live as long.
    explicit HostWindow(NyServerApp* listener = nullptr) : m_listener(listener) {}

    // The listener notifies this window from now on, and none.
    void attachTo(NyServerApp& listener) {
        listener.setReceiver(
            [this](NySe::ActionType action, CMemFile& payload) { receive(action, payload); });
    }
    // Ends a hold, too.
    void detachFrom(NyServerApp& listener) {
        setHolding(false);
        listener.setReceiver(nullptr);
    }

    // From now on consumes only as many notifications as `consume` is told. Until then, those that
    // it has received may be fewer than the listener counts.
    void hold() { setHolding(true); }
    // REQUIRES: it holds, and was created with the listener.
    void consume(int count = 1) {
        const std::lock_guard lock(m_mutex);
        m_permits += count;
        m_changed.notify_all();
    }

    std::vector<PostedMessage> messages() const {
        const std::lock_guard lock(m_mutex);
        return m_messages;
    }
    auto awaitMessages(size_t count) const { return messagesOnceThereAre(*this, count); }
    size_t count() const {
        const std::lock_guard lock(m_mutex);
        return m_messages.size();
    }
    // Once the window has received all that was posted so far. REQUIRES: it was created with the
    // listener, and does not hold.
    void settle() {
        if (m_listener) eventually([&] { return m_listener->getPostMsgCount() == 0; }, kGenerously);
    }
    // Forgets its messages once settled.
    void forget() {
        settle();
        const std::lock_guard lock(m_mutex);
        m_messages.clear();
    }

  private:
    // A notification is consumed when this returns.
    void receive(NySe::ActionType action, CMemFile& payload) {
        std::string body(static_cast<size_t>(payload.GetLength()), '\0');
        payload.Read(body.data(), static_cast<UINT>(body.size()));
        std::unique_lock lock(m_mutex);
        m_messages.push_back({frame(action, body)});
        m_changed.wait_for(lock, kGenerously, [this] { return !m_isHolding || m_permits > 0; });
        if (m_isHolding) --m_permits;
    }
    void setHolding(bool isHolding) {
        const std::lock_guard lock(m_mutex);
        m_isHolding = isHolding;
        m_permits = 0;
        m_changed.notify_all();
    }

    NyServerApp* const m_listener;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<PostedMessage> m_messages;
    bool m_isHolding = false;
    int m_permits = 0;  // to consume one each
};
