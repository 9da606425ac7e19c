// There are no windows: a host receives notifications by a function.
#include "NyServer/listener/NyServerApp.h"

DWORD NyServerApp::systemPostMessageLimit() {
    return 3600;  // as on a system that has no setting
}

void NyServerApp::postToWindow(unsigned int, CMemFile&) {}
