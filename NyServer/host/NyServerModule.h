// What the module is to its host: the message that it registers, and the call that joins it to a
// host's module chain.
#pragma once

#include "NyServer/NyServerApi.h"

namespace NySe {

// The identifier of the registered window message "TM_NYSERVERMESSAGE", with which every
// notification is posted. Set while the module is loaded, before any code of the host runs, and
// never changed.
extern NYSERVER_API unsigned int _TM_NYSERVERMESSAGE;

// Joins the module's classes and resources to the chain of a host that is itself a DLL with a
// module state of its own. Such a host calls it exactly once, when it starts; others need not.
// Without effect when no memory is left.
NYSERVER_API void initDll();

}  // namespace NySe
