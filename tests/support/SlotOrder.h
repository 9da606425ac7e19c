// Where a virtual function stands in its class's table of virtual functions, read from a pointer to
// member as the Itanium C++ ABI lays it out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// The slot of `function`, counted from 0. The destructor takes slots 0 and 1 (complete and
// deleting), so that in a class that declares its destructor first the second virtual function has
// slot 2, the third 3, and so on. REQUIRES: `function` is virtual. For an overloaded function, cast
// to the type meant; for a protected one, take the pointer inside a derived class.
template <class Member>
std::size_t slotOf(Member function) {
    struct Layout {
        std::uintptr_t offsetPlusOne;  // of the slot in bytes, for a virtual function
        std::ptrdiff_t adjustment;
    } layout;
    static_assert(sizeof layout == sizeof function);
    std::memcpy(&layout, &function, sizeof layout);
    return (layout.offsetPlusOne - 1) / sizeof(void*);
}
