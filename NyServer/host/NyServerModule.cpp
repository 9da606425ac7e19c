#include "NyServer/host/NyServerModule.h"

#include "NyServer/base/WindowsPrelude.h"

unsigned int NySe::_TM_NYSERVERMESSAGE = RegisterWindowMessageW(L"TM_NYSERVERMESSAGE");
