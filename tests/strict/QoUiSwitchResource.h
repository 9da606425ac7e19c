// The operations that the library needs of the vendor's windows library; see QoSort.h.
#pragma once

#include <afxwin.h>

class QoUiSwitchResource {
  public:
    explicit QoUiSwitchResource(HINSTANCE instance);
    virtual ~QoUiSwitchResource();

  protected:
    void setResourceHandle(HINSTANCE instance);
};
