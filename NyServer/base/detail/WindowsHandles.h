// Owners of Windows handles, one line for each kind.
#pragma once

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/detail/UniqueHandle.h"

namespace NySe {

// Threads, mutexes, events: whatever reports failure with a null handle.
using UniqueKernelHandle = UniqueHandle<HANDLE, ::CloseHandle>;

// Memory from GlobalAlloc.
using UniqueGlobalBlock = UniqueHandle<HGLOBAL, ::GlobalFree>;

using UniqueRegistryKey = UniqueHandle<HKEY, ::RegCloseKey>;

}  // namespace NySe
