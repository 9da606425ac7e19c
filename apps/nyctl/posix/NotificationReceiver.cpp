#include "apps/nyctl/NotificationReceiver.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace apps::nyctl {

// The listener's thread waits until its notification is received, so that the listener counts what
// waits here as waiting.
class NotificationReceiver::Source {
  public:
    Source(NyServerApp& listener, Show show) : m_listener(listener), m_show(std::move(show)) {
        if (!m_listener.setReceiver([this](NySe::ActionType action, CMemFile& payload) {
                offer({action, &payload});
            }))
            throw std::runtime_error("no thread can be created for the notifications");
    }
    ~Source() {
        {
            const std::lock_guard guard(m_mutex);
            m_isEnding = true;
        }
        m_changed.notify_all();
        m_listener.setReceiver(nullptr);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    bool receive(std::chrono::milliseconds time) {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, time, [this] { return m_offered.payload != nullptr; }))
            return false;
        m_show(m_offered.action, *m_offered.payload);
        m_offered = {};
        m_changed.notify_all();
        return true;
    }

  private:
    struct Notification {
        NySe::ActionType action = NySe::noAction;
        CMemFile* payload = nullptr;
    };

    void offer(const Notification& notification) {
        std::unique_lock lock(m_mutex);
        m_offered = notification;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_isEnding || m_offered.payload == nullptr; });
    }

    NyServerApp& m_listener;
    const Show m_show;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Notification m_offered;
    bool m_isEnding = false;
};

NotificationReceiver::NotificationReceiver(NyServerApp& listener, Show show)
    : m_source(std::make_unique<Source>(listener, std::move(show))) {}

NotificationReceiver::~NotificationReceiver() = default;

bool NotificationReceiver::receive(DWORD milliseconds) {
    return m_source->receive(std::chrono::milliseconds(milliseconds));
}

}  // namespace apps::nyctl
