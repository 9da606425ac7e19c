// Tells the processor of memory that is read soon. Internal to the class library.
#pragma once

#include "CObject.h"

// Most records lie within two lines of the processor's caches.
[[gnu::always_inline]] inline void afxFetchEarly(const CObject* object) {
    constexpr uintptr_t kLine = 64;
    __builtin_prefetch(object);
    // Not by adding to a pointer, which may be null.
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(object) + kLine));
}
