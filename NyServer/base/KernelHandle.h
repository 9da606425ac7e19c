#pragma once

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"

struct KernelHandleTraits {
    using Handle = HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { ::CloseHandle(handle); }
};

// Threads, mutexes, events: what reports failure with a null handle.
using UniqueKernelHandle = UniqueHandle<KernelHandleTraits>;
