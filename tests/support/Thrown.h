// What an action throws of the class library's exceptions, which are thrown as pointers.
#pragma once

#include <afx.h>

// The cause of the EXCEPTION that `action` throws; -1 when it throws nothing.
template <class EXCEPTION, class Action>
int thrownCause(Action action) {
    try {
        action();
    } catch (EXCEPTION* thrown) {
        const int cause = thrown->m_cause;
        thrown->Delete();
        return cause;
    }
    return -1;
}

template <class Action>
int archiveCause(Action action) {
    return thrownCause<CArchiveException>(action);
}

template <class Action>
int fileCause(Action action) {
    return thrownCause<CFileException>(action);
}

template <class EXCEPTION, class Action>
bool throwsA(Action action) {
    try {
        action();
    } catch (EXCEPTION* thrown) {
        thrown->Delete();
        return true;
    }
    return false;
}
