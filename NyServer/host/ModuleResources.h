// The module's own resources, whichever module's are current. Internal to the module.
#pragma once

#include <QoUiLoadString.h>
#include <QoUiSwitchResource.h>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/host/resource.h"

namespace moduleresources {

// The module that holds the resources of NyServerDll; null when it is not loaded, which is not
// remembered. May be called from any thread.
HINSTANCE handle();

// A text of the module's string table (NyServer/host/resource.h); empty when there is none with
// that identifier. May be called from any thread.
CString loadString(UINT id);

}  // namespace moduleresources

// While it lives, resource look-ups go to this module first; see QoUiSwitchResource.
class NyServerDllSwitchResource : public QoUiSwitchResource {
  public:
    NyServerDllSwitchResource();
    // Goes to this module again, after somebody else has switched.
    virtual void setModuleResourceHandle();
};

class NyServerDllLoadString final : public QoUiLoadString {
  public:
    using QoUiLoadString::QoUiLoadString;

  protected:
    HINSTANCE getResourceHandle() const override;
};
