// NySeLockName: the name of a lock, which knows whether an index of names relies on it.
#pragma once

#include <afx.h>

#include "NyServer/NyServerApi.h"

// One object may be used by one thread at a time.
class NYSERVER_API NySeLockName {
  public:
    NySeLockName() = default;
    NySeLockName(const NySeLockName&) = delete;
    NySeLockName& operator=(const NySeLockName&) = delete;
    NYSERVER_INLINE ~NySeLockName() { beforeChange(); }

    NYSERVER_INLINE const CString& text() const { return m_text; }
    // For whoever changes the text.
    NYSERVER_INLINE CString& change() {
        beforeChange();
        return m_text;
    }

    // How often, in this process, a name that an index relied on was changed or destroyed. May be
    // called by any thread.
    static unsigned long long changes();

    // From here on `index` relies on this name.
    NYSERVER_INLINE void enter(const void* index) const {
        m_index = m_index == nullptr || m_index == index ? index : this;
    }
    // `index` does not any more.
    NYSERVER_INLINE void leave(const void* index) const {
        if (m_index == index) m_index = nullptr;
    }

  private:
    void beforeChange() {
        if (m_index != nullptr) countChange();
    }
    void countChange();

    CString m_text;
    mutable const void* m_index = nullptr;  // who relies on it; this name itself: several
};
