// The module's own resources, whichever module's are current. Internal to the module.
#pragma once

#include <QoUiLoadString.h>
#include <QoUiSwitchResource.h>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/host/resource.h"

namespace moduleresources {

// Returns the module that has the resources of NyServerDll; null if it is not loaded. Null is not
// cached. Any thread may call it.
HINSTANCE handle();

// Returns a text of the module's string table (NyServer/host/resource.h); empty if there is none
// with that identifier. Any thread may call it.
CString loadString(UINT id);

}  // namespace moduleresources

// While it exists, resources are searched in this module first; see QoUiSwitchResource.
class NyServerDllSwitchResource : public QoUiSwitchResource {
  public:
    NyServerDllSwitchResource();
    // Switches to this module again, after somebody else has switched.
    virtual void setModuleResourceHandle();
};

class NyServerDllLoadString final : public QoUiLoadString {
  public:
    using QoUiLoadString::QoUiLoadString;

  protected:
    HINSTANCE getResourceHandle() const override;
};
