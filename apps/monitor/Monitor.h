// The whole program but its command line.
#pragma once

#include "apps/common/Session.h"

namespace apps::monitor {

// Shows the window until the user closes it. If the worker does not end soon after that, calls
// `abandon`, which may end the program; if it returns, waits for the worker. Returns false if the
// window cannot be created.
bool runMonitor(const Account& account, void (*abandon)());

}  // namespace apps::monitor
