// Turns exceptions into results: all of them where none may leave (exported functions, thread and
// window procedures), those of archives or out of memory alone where the caller handles the others.
#pragma once

// Before the Windows headers, as the class library requires.
#include <afx.h>

#include <new>
#include <type_traits>

namespace NySe {

// Returns what `action` returns, or `failure` if it throws.
template <class Action>
auto resultOr(std::invoke_result_t<Action> failure, Action action) -> decltype(action()) {
    try {
        return action();
    } catch (CException* error) {
        error->Delete();
    } catch (...) {
        // The result reports it.
    }
    return failure;
}

// Runs `action`. Returns false if it threw.
template <class Action>
bool succeeds(Action action) {
    return resultOr(false, [&action] {
        action();
        return true;
    });
}

// Runs `action` and catches a CFileException or a CArchiveException. Other exceptions pass.
template <class Action>
void dropArchiveErrors(Action action) {
    try {
        action();
    } catch (CFileException* error) {
        error->Delete();
    } catch (CArchiveException* error) {
        error->Delete();
    }
}

// Returns what `action` returns; null, false or 0 if it runs out of memory, which the language
// reports by std::bad_alloc and the class library by CMemoryException. Other exceptions pass.
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

}  // namespace NySe
