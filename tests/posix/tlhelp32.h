// The threads of this process: those of _beginthread that have not ended, and one for the others.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

enum : DWORD { TH32CS_SNAPTHREAD = 4 };
struct THREADENTRY32 {
    DWORD dwSize;
    DWORD th32OwnerProcessID;
    int remaining;  // of the snapshot
};

HANDLE CreateToolhelp32Snapshot(DWORD flags, DWORD process);
BOOL Thread32First(HANDLE snapshot, THREADENTRY32* entry);
BOOL Thread32Next(HANDLE snapshot, THREADENTRY32* entry);
