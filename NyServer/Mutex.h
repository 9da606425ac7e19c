// std::mutex and a scoped lock of it, annotated so that clang checks their use.
#pragma once

#include <mutex>

#include "NyServer/detail/ThreadAnnotations.h"

namespace NySe {

class NY_LOCK_TYPE("mutex") Mutex {
  private:
    friend class MutexLock;
    std::mutex m_mutex;
};

class NY_SCOPED_LOCK MutexLock {
  public:
    explicit MutexLock(Mutex& mutex) NY_ACQUIRES(mutex) : m_lock(mutex.m_mutex) {}
    ~MutexLock() NY_RELEASES() = default;
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    // For the wait functions of std::condition_variable, which unlock it while they wait.
    std::unique_lock<std::mutex>& standard() { return m_lock; }

  private:
    std::unique_lock<std::mutex> m_lock;
};

}  // namespace NySe
