// QoWaitCursor: shows the wait cursor while it exists.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

// The destructor shows the previous cursor, or none if there was none. Wait cursors may be nested.
// Used by one thread, whose windows show it.
class NYBASE_API QoWaitCursor {
  public:
    QoWaitCursor();
    ~QoWaitCursor();
    QoWaitCursor(const QoWaitCursor&) = delete;
    QoWaitCursor& operator=(const QoWaitCursor&) = delete;

  private:
    HCURSOR m_previous;
};
