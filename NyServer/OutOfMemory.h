// Ends a lack of memory in a return value.
#pragma once

#include <afx.h>

#include <new>

// What `action` returns; null, false or 0 when memory runs out in it, which the language and the
// class library report each in its own way. Other exceptions pass.
template <class Action>
auto zeroIfOutOfMemory(Action action) -> decltype(action()) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        // Told by the result.
    } catch (CMemoryException* error) {
        error->Delete();
    }
    return {};
}
