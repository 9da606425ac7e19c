// QoWaitCursor: tells the user to wait.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

// Shows the wait cursor while it lives and then the cursor that was shown before, or none when
// there was none. Wait cursors may be nested. To be used by one thread, which is the one whose
// windows show it.
class NYBASE_API QoWaitCursor {
  public:
    QoWaitCursor();
    ~QoWaitCursor();
    QoWaitCursor(const QoWaitCursor&) = delete;
    QoWaitCursor& operator=(const QoWaitCursor&) = delete;

  private:
    HCURSOR m_previous;
};
