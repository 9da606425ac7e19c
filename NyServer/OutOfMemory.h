// Turns out of memory into a return value.
#pragma once

#include <afx.h>

#include <new>

// What `action` returns; null, false or 0 when it runs out of memory, which the language reports by
// std::bad_alloc and the class library by CMemoryException. Other exceptions pass.
template <class Action>
auto zeroIfOutOfMemory(Action action) -> decltype(action()) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        // The result reports it.
    } catch (CMemoryException* error) {
        error->Delete();
    }
    return {};
}
