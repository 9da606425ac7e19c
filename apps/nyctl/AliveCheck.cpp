#include "apps/nyctl/AliveCheck.h"

#include "NyServer/base/port/Port.h"

namespace apps::nyctl {

namespace {

// The connection to a machine that no longer runs, or cannot be reached, does not end by itself.
constexpr std::chrono::seconds kInterval(5);
constexpr DWORD kLastWait = 1000;  // ms

}  // namespace

class AliveCheck::Request {
  public:
    explicit Request(NySeClientApp& client) : m_client(client) {
        m_isStarted = m_thread.start(threadMain, this) != port::kNoThread;
        if (!m_isStarted) m_isAlive = m_client.isAlive();
    }
    ~Request() {
        if (!hasEnded(kLastWait)) m_client.interrupt();
        m_thread.join();
    }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    bool hasEnded(DWORD milliseconds) const {
        return !m_isStarted || m_thread.waitForEnd(milliseconds);
    }
    // REQUIRES: it has ended.
    bool isAlive() const { return m_isAlive; }

  private:
    static void threadMain(void* request) {
        auto* const self = static_cast<Request*>(request);
        self->m_isAlive = self->m_client.isAlive();
    }

    NySeClientApp& m_client;
    port::Thread m_thread;
    bool m_isStarted = false;
    bool m_isAlive = false;
};

AliveCheck::AliveCheck(NySeClientApp& client)
    : m_client(client), m_next(Clock::now() + kInterval) {}

AliveCheck::~AliveCheck() = default;

bool AliveCheck::isAlive() {
    if (!m_request) {
        if (!m_client.IsConnected()) return false;
        if (Clock::now() < m_next) return true;
        m_request = std::make_unique<Request>(m_client);
    }
    if (!m_request->hasEnded(0)) return true;
    const bool isAlive = m_request->isAlive();
    m_request.reset();
    m_next = Clock::now() + kInterval;
    return isAlive;
}

}  // namespace apps::nyctl
