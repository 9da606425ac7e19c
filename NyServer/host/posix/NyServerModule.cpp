// A host without windows: no message is registered, and no module has a chain.
#include "NyServer/host/NyServerModule.h"

unsigned int NySe::_TM_NYSERVERMESSAGE = 0;

void NySe::initDll() {}
