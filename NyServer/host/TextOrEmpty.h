// Text for callers that expect no exception. Internal to the module.
#pragma once

#include <afx.h>

// What `question` answers; the empty string when it ends in an exception, as when no memory is
// left.
template <class Question>
CString textOrEmpty(Question question) noexcept {
    try {
        return question();
    } catch (CException* exception) {
        exception->Delete();
    } catch (...) {
        // Not known, whatever the reason.
    }
    return {};
}
