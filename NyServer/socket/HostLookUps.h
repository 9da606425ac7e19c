#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"

// The asynchronous host look-ups of one object that have not been announced yet. The stack writes
// each HOSTENT into memory of its own, so that the object may go while a look-up is under way. Not
// locked: used by the thread of the object's notification window.
class HostLookUps {
  public:
    static constexpr std::size_t kResultSize = 1024;

    HostLookUps() = default;
    ~HostLookUps() { abandon(); }
    HostLookUps(const HostLookUps&) = delete;
    HostLookUps& operator=(const HostLookUps&) = delete;

    // Starts a look-up: `request` is one of the WSAAsyncGet calls, given the memory for its result.
    // False when the stack does not accept it or there is no memory.
    bool start(const std::function<HANDLE(char* result, int size)>& request);

    // A look-up has been announced. When it found something, its HOSTENT is moved to `target` of
    // kResultSize bytes. Without effect for one that was not started here.
    void finish(HANDLE request, bool isFound, char* target);

    // Cancels what is under way.
    void abandon();

  private:
    struct Result {
        alignas(hostent) char bytes[kResultSize]{};

        void moveTo(char* target);
    };
    struct LookUp {
        HANDLE request;
        std::unique_ptr<Result> result;
    };
    std::vector<LookUp> m_pending;
};
