#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "NyServer/base/port/Port.h"

namespace port {
namespace {

// A condition and its mutex. Waits are on the monotonic clock.
class Condition {
  public:
    explicit Condition(bool isSet) : m_isSet(isSet) {}

    void change(bool isSet) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isSet = isSet;
        if (isSet) m_changed.notify_all();
    }

    bool wait(DWORD milliseconds) {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                  [this] { return m_isSet; });
    }

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isSet;
};

// A thread that was started. Both it and the object that started it use `end`, whichever of the two
// is destroyed first.
struct Started {
    ~Started() {
        if (thread.joinable()) thread.detach();
    }

    // Waits for the destructors of the thread-local objects, too. Returns false if the thread
    // itself calls it.
    bool join() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (thread.get_id() == std::this_thread::get_id()) return false;
        if (thread.joinable()) thread.join();
        return true;
    }

    const std::shared_ptr<Condition> end = std::make_shared<Condition>(false);
    std::mutex mutex;
    std::thread thread;
};

void initialise(pthread_mutex_t& mutex, int robustness) {
    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    ::pthread_mutexattr_setrobust(&attributes, robustness);
    ::pthread_mutex_init(&mutex, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
}

// While it lives, threads start with signals blocked, except for those that a thread causes itself
// and that of a profiler: a host's handlers run on the host's threads.
class BlockedSignals {
  public:
    BlockedSignals() {
        sigset_t blocked;
        ::sigfillset(&blocked);
        for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGPROF})
            ::sigdelset(&blocked, own);
        ::pthread_sigmask(SIG_BLOCK, &blocked, &m_before);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

  private:
    sigset_t m_before{};
};

// Returns no thread if the system has none.
template <class Procedure>
std::thread startBlocked(Procedure procedure) try {
    const BlockedSignals blocked;
    return std::thread(std::move(procedure));
} catch (const std::system_error&) {
    return {};
} catch (const std::bad_alloc&) {
    return {};
}

std::uintptr_t numberOf(std::thread& thread) {
    return thread.joinable() ? static_cast<std::uintptr_t>(thread.native_handle()) : kNoThread;
}

}  // namespace

ULONGLONG milliseconds() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<ULONGLONG>(
        std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

void sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

DWORD currentThreadId() {
    return static_cast<DWORD>(::gettid());
}

void useNormalPriority() {}

std::uintptr_t startThread(void (*procedure)(void*), void* argument) {
    std::thread thread = startBlocked([procedure, argument] { procedure(argument); });
    const std::uintptr_t number = numberOf(thread);
    if (thread.joinable()) thread.detach();
    return number;
}

Thread::~Thread() {
    delete static_cast<Started*>(m_thread);
}

std::uintptr_t Thread::start(void (*procedure)(void*), void* argument) try {
    auto started = std::make_unique<Started>();
    started->thread = startBlocked([procedure, argument, end = started->end] {
        procedure(argument);
        end->change(true);
    });
    const std::uintptr_t number = numberOf(started->thread);
    if (number != kNoThread) m_thread = started.release();
    return number;
} catch (const std::bad_alloc&) {
    return kNoThread;
}

bool Thread::waitForEnd(DWORD milliseconds) const {
    auto* const started = static_cast<Started*>(m_thread);
    return started && started->end->wait(milliseconds) && started->join();
}

void Thread::join() const {
    if (m_thread) static_cast<Started*>(m_thread)->join();
}

Event::Event(bool isSet) : m_event(new (std::nothrow) Condition(isSet)) {}

Event::~Event() {
    delete static_cast<Condition*>(m_event);
}

void Event::set() {
    if (m_event) static_cast<Condition*>(m_event)->change(true);
}

void Event::reset() {
    if (m_event) static_cast<Condition*>(m_event)->change(false);
}

bool Event::wait(DWORD milliseconds) const {
    if (m_event) return static_cast<Condition*>(m_event)->wait(milliseconds);
    sleep(milliseconds);
    return false;
}

RecursiveMutex::RecursiveMutex() {
    initialise(m_mutex, PTHREAD_MUTEX_STALLED);
}

RecursiveMutex::~RecursiveMutex() {
    ::pthread_mutex_destroy(&m_mutex);
}

void RecursiveMutex::lock() {
    ::pthread_mutex_lock(&m_mutex);
}

void RecursiveMutex::unlock() {
    ::pthread_mutex_unlock(&m_mutex);
}

RobustMutex::RobustMutex() : m_mutex(new pthread_mutex_t) {
    initialise(*static_cast<pthread_mutex_t*>(m_mutex), PTHREAD_MUTEX_ROBUST);
}

RobustMutex::~RobustMutex() {
    auto* const mutex = static_cast<pthread_mutex_t*>(m_mutex);
    ::pthread_mutex_destroy(mutex);
    delete mutex;
}

void RobustMutex::lock() const {
    auto* const mutex = static_cast<pthread_mutex_t*>(m_mutex);
    if (::pthread_mutex_lock(mutex) == EOWNERDEAD) ::pthread_mutex_consistent(mutex);
}

void RobustMutex::unlock() const {
    ::pthread_mutex_unlock(static_cast<pthread_mutex_t*>(m_mutex));
}

}  // namespace port
