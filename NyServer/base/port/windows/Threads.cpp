#include "NyServer/base/port/Port.h"

#include <process.h>

#include <memory>
#include <new>

namespace port {
namespace {

struct Start {
    void (*procedure)(void*);
    void* argument;
};

unsigned __stdcall run(void* start) {
    const Start copy = *static_cast<Start*>(start);
    delete static_cast<Start*>(start);
    copy.procedure(copy.argument);
    return 0;
}

void closeHandle(HANDLE handle) {
    if (handle) ::CloseHandle(handle);
}

}  // namespace

ULONGLONG milliseconds() {
    return ::GetTickCount64();
}

void sleep(DWORD milliseconds) {
    ::Sleep(milliseconds);
}

DWORD currentThreadId() {
    return ::GetCurrentThreadId();
}

void useNormalPriority() {
    ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_NORMAL);
}

std::uintptr_t startThread(void (*procedure)(void*), void* argument) {
    return ::_beginthread(procedure, 0, argument);
}

Thread::~Thread() {
    closeHandle(m_thread);
}

// Not by _beginthread: its handle is closed when the thread ends, perhaps before it could be waited
// for.
std::uintptr_t Thread::start(void (*procedure)(void*), void* argument) {
    std::unique_ptr<Start> start(new (std::nothrow) Start{procedure, argument});
    if (!start) return kNoThread;
    const std::uintptr_t thread = ::_beginthreadex(nullptr, 0, &run, start.get(), 0, nullptr);
    if (thread == 0) return kNoThread;
    static_cast<void>(start.release());
    m_thread = reinterpret_cast<HANDLE>(thread);
    return thread;
}

bool Thread::waitForEnd(DWORD milliseconds) const {
    return ::WaitForSingleObject(m_thread, milliseconds) == WAIT_OBJECT_0;
}

void Thread::join() const {
    ::WaitForSingleObject(m_thread, INFINITE);
}

Event::Event(bool isSet) : m_event(::CreateEventW(nullptr, TRUE, isSet, nullptr)) {}

Event::~Event() {
    closeHandle(m_event);
}

void Event::set() {
    ::SetEvent(m_event);
}

void Event::reset() {
    ::ResetEvent(m_event);
}

bool Event::wait(DWORD milliseconds) const {
    const DWORD result = ::WaitForSingleObject(m_event, milliseconds);
    if (result == WAIT_FAILED) ::Sleep(milliseconds);
    return result == WAIT_OBJECT_0;
}

RecursiveMutex::RecursiveMutex() {
    ::InitializeCriticalSection(&m_mutex);
}

RecursiveMutex::~RecursiveMutex() {
    ::DeleteCriticalSection(&m_mutex);
}

void RecursiveMutex::lock() {
    ::EnterCriticalSection(&m_mutex);
}

void RecursiveMutex::unlock() {
    ::LeaveCriticalSection(&m_mutex);
}

RobustMutex::RobustMutex() : m_mutex(::CreateMutexW(nullptr, FALSE, nullptr)) {
    if (!m_mutex) throw std::bad_alloc();
}

RobustMutex::~RobustMutex() {
    ::CloseHandle(m_mutex);
}

void RobustMutex::lock() const {
    ::WaitForSingleObject(m_mutex, INFINITE);
}

void RobustMutex::unlock() const {
    ::ReleaseMutex(m_mutex);
}

}  // namespace port
