// Resource look-ups in another module for a while.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

// While it lives, resources are looked for in the given module first. The resource handle is the
// process's: REQUIRES that switches are made by one thread at a time and end in the reverse order.
class NYBASE_API QoUiSwitchResource {
  public:
    // Null: look-ups stay where they are.
    explicit QoUiSwitchResource(HINSTANCE instance);
    // Restores the handle that was current before.
    virtual ~QoUiSwitchResource();
    QoUiSwitchResource(const QoUiSwitchResource&) = delete;
    QoUiSwitchResource& operator=(const QoUiSwitchResource&) = delete;

  protected:
    // Switches again, after somebody else has; what is restored in the end stays the same. Null
    // changes nothing.
    void setResourceHandle(HINSTANCE instance);

  private:
    HINSTANCE m_previous;
};
