#include "NyServer/base/port/Port.h"

#include <process.h>

#include <new>

namespace port {
namespace {

// A handle of our own: the one that _beginthread returns is closed when the thread ends.
HANDLE duplicateOf(std::uintptr_t thread) {
    HANDLE copy = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), reinterpret_cast<HANDLE>(thread),
                      ::GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return copy;
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
    closeHandle(m_end);
}

std::uintptr_t Thread::start(void (*procedure)(void*), void* argument) {
    const std::uintptr_t thread = startThread(procedure, argument);
    if (thread != kNoThread) m_end = duplicateOf(thread);
    return thread;
}

bool Thread::waitForEnd(DWORD milliseconds) const {
    return ::WaitForSingleObject(m_end, milliseconds) == WAIT_OBJECT_0;
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
