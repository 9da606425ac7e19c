// Threads of the C run-time library.
#pragma once

#include <cstdint>

// A handle that closes itself when the thread ends, or -1.
uintptr_t _beginthread(void (*procedure)(void*), unsigned stackSize, void* argument);
