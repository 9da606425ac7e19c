// The registered message of the module, and the call that links the module to the chain of its
// host.
#pragma once

#include "NyServer/NyServerApi.h"

namespace NySe {

// The identifier of the registered window message "TM_NYSERVERMESSAGE", with which notifications
// are posted. Set when the module is loaded, before any code of the host runs, and never changed.
extern NYSERVER_API unsigned int _TM_NYSERVERMESSAGE;

// Links the module's classes and resources to the chain of a host that is a DLL with a module state
// of its own. Such a host calls it exactly once, at start; other hosts do not need it. No effect if
// out of memory.
NYSERVER_API void initDll();

}  // namespace NySe
