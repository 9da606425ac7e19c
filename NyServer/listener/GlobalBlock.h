#pragma once

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"

struct GlobalBlockTraits {
    using Handle = HGLOBAL;
    static Handle invalid() { return nullptr; }
    static void close(Handle block) { ::GlobalFree(block); }
};

// Memory from GlobalAlloc.
using UniqueGlobalBlock = UniqueHandle<GlobalBlockTraits>;
