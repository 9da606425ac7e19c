// The window from its first message to its last.
#pragma once

#include "apps/common/Session.h"

namespace apps::monitor {

// Shows the window until the user closes it. When the talk with the server does not end soon after
// that, `abandon` is called, which may end the program; if it returns, the end is waited for. False
// when the system makes no window.
bool runMonitor(const Account& account, void (*abandon)());

}  // namespace apps::monitor
