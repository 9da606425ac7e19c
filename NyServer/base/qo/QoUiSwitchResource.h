// QoUiSwitchResource: redirects resource look-ups to another module while it exists.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

// While it exists, resources are searched in the given module first. The resource handle belongs to
// the process: REQUIRES that one thread at a time switches, and that switches end in the reverse
// order.
class NYBASE_API QoUiSwitchResource {
  public:
    // Null changes nothing.
    explicit QoUiSwitchResource(HINSTANCE instance);
    // Restores the handle that was current before.
    virtual ~QoUiSwitchResource();
    QoUiSwitchResource(const QoUiSwitchResource&) = delete;
    QoUiSwitchResource& operator=(const QoUiSwitchResource&) = delete;

  protected:
    // Switches again, after another switch. The destructor restores the same handle as before. Null
    // changes nothing.
    void setResourceHandle(HINSTANCE instance);

  private:
    HINSTANCE m_previous;
};
