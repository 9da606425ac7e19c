#pragma once

#include "NyServer/base/detail/UniqueHandle.h"
// After windows.h.
#include <tlhelp32.h>

// The threads of this process.
inline int countThreads() {
    const NySe::UniqueKernelHandle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = ::Thread32First(snapshot.get(), &entry); more;
         more = ::Thread32Next(snapshot.get(), &entry))
        if (entry.th32OwnerProcessID == ::GetCurrentProcessId()) ++count;
    return count;
}

// The same, once the detached threads of earlier tests have ended.
inline int countThreadsAtRest() {
    int count = countThreads();
    for (int sameLooks = 0; sameLooks < 5;) {
        ::Sleep(10);
        const int now = countThreads();
        sameLooks = now == count ? sameLooks + 1 : 0;
        count = now;
    }
    return count;
}
