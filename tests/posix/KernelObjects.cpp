#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <process.h>
#include <tlhelp32.h>

namespace {

// What a handle leads to. `isSet` ends waits; a mutex is `lock` and nothing else.
struct KernelObject {
    bool isMutex = false;
    std::recursive_mutex lock;
    std::mutex mutex;
    std::condition_variable changed;
    bool isSet = false;

    void set() {
        const std::lock_guard guard(mutex);
        isSet = true;
        changed.notify_all();
    }
    void reset() {
        const std::lock_guard guard(mutex);
        isSet = false;
    }
    bool await(DWORD milliseconds) {
        std::unique_lock guard(mutex);
        const auto isDone = [this] { return isSet; };
        if (milliseconds != INFINITE)
            // The system's clock, since that is the one that the thread sanitizer knows.
            return changed.wait_until(
                guard, std::chrono::system_clock::now() + std::chrono::milliseconds(milliseconds),
                isDone);
        changed.wait(guard, isDone);
        return true;
    }
};

// The places that handles name. A handle is looked up without the lock, since that would order
// accesses of the code that is looked at; using one that another thread closes is thus found too.
// Making and closing handles does take the lock, and so orders the end of a thread before the
// beginning of later ones: races between the two are not found.
std::mutex placesLock;
std::array<std::shared_ptr<KernelObject>, 4096> places;

size_t placeOf(HANDLE handle) {
    return reinterpret_cast<size_t>(handle) / 4 - 1;
}

KernelObject* objectOf(HANDLE handle) {
    const size_t place = placeOf(handle);
    return place < places.size() ? places[place].get() : nullptr;
}

HANDLE handleFor(std::shared_ptr<KernelObject> object) {
    const std::lock_guard guard(placesLock);
    for (size_t place = 0; place < places.size(); ++place) {
        if (places[place]) continue;
        places[place] = std::move(object);
        return reinterpret_cast<HANDLE>((place + 1) * 4);
    }
    return nullptr;
}

std::atomic<int> begunThreads = 0;

}  // namespace

HANDLE CreateEventW(void*, BOOL, BOOL isSet, const wchar_t*) {
    const auto event = std::make_shared<KernelObject>();
    event->isSet = isSet != FALSE;
    return handleFor(event);
}

BOOL SetEvent(HANDLE event) {
    objectOf(event)->set();
    return TRUE;
}

BOOL ResetEvent(HANDLE event) {
    objectOf(event)->reset();
    return TRUE;
}

HANDLE CreateMutexW(void*, BOOL, const wchar_t*) {
    const auto mutex = std::make_shared<KernelObject>();
    mutex->isMutex = true;
    return handleFor(mutex);
}

BOOL ReleaseMutex(HANDLE mutex) {
    objectOf(mutex)->lock.unlock();
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    KernelObject* const object = objectOf(handle);
    if (!object) return WAIT_FAILED;
    if (object->isMutex) {
        object->lock.lock();
        return WAIT_OBJECT_0;
    }
    return object->await(milliseconds) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

BOOL DuplicateHandle(HANDLE, HANDLE handle, HANDLE, HANDLE* copy, DWORD, BOOL, DWORD) {
    *copy = handleFor(places[placeOf(handle)]);
    return *copy != nullptr;
}

BOOL CloseHandle(HANDLE handle) {
    std::shared_ptr<KernelObject> object;
    const std::lock_guard guard(placesLock);
    if (!objectOf(handle)) return FALSE;
    object.swap(places[placeOf(handle)]);
    return TRUE;
}

BOOL GetProcessHandleCount(HANDLE, DWORD* count) {
    const std::lock_guard guard(placesLock);
    *count = 0;
    for (const auto& place : places) *count += place != nullptr;
    return TRUE;
}

HANDLE GetCurrentProcess() {
    return INVALID_HANDLE_VALUE;
}

HANDLE GetCurrentThread() {
    return INVALID_HANDLE_VALUE;
}

DWORD GetCurrentProcessId() {
    return static_cast<DWORD>(::getpid());
}

DWORD GetCurrentThreadId() {
    return static_cast<DWORD>(::gettid());
}

BOOL SetThreadPriority(HANDLE, int) {
    return TRUE;
}

int GetThreadPriority(HANDLE) {
    return THREAD_PRIORITY_NORMAL;
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

ULONGLONG GetTickCount64() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<ULONGLONG>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

BOOL GetComputerNameW(WCHAR* name, DWORD* size) {
    char bytes[256] = "";
    ::gethostname(bytes, sizeof bytes - 1);
    DWORD length = 0;
    while (length + 1 < *size && (name[length] = static_cast<unsigned char>(bytes[length])))
        ++length;
    name[length] = 0;
    *size = length;
    return TRUE;
}

void InitializeCriticalSection(CRITICAL_SECTION* section) {
    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    ::pthread_mutex_init(&section->mutex, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
}

void DeleteCriticalSection(CRITICAL_SECTION* section) {
    ::pthread_mutex_destroy(&section->mutex);
}

void EnterCriticalSection(CRITICAL_SECTION* section) {
    ::pthread_mutex_lock(&section->mutex);
}

void LeaveCriticalSection(CRITICAL_SECTION* section) {
    ::pthread_mutex_unlock(&section->mutex);
}

// The count goes down before the end is told, so that whoever has waited for it sees it.
uintptr_t _beginthread(void (*procedure)(void*), unsigned, void* argument) try {
    const auto end = std::make_shared<KernelObject>();
    const HANDLE handle = handleFor(end);
    if (!handle) return static_cast<uintptr_t>(-1);
    begunThreads.fetch_add(1, std::memory_order_relaxed);
    std::thread([=] {
        procedure(argument);
        ::CloseHandle(handle);
        begunThreads.fetch_sub(1, std::memory_order_relaxed);
        end->set();
    }).detach();
    return reinterpret_cast<uintptr_t>(handle);
} catch (const std::system_error&) {
    return static_cast<uintptr_t>(-1);
}

HANDLE CreateToolhelp32Snapshot(DWORD, DWORD) {
    return INVALID_HANDLE_VALUE;
}

BOOL Thread32First(HANDLE, THREADENTRY32* entry) {
    entry->th32OwnerProcessID = ::GetCurrentProcessId();
    entry->remaining = begunThreads.load(std::memory_order_relaxed);
    return TRUE;
}

BOOL Thread32Next(HANDLE, THREADENTRY32* entry) {
    return entry->remaining-- > 0;
}
