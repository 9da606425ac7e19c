// What is said before the command.
#pragma once

#include "apps/common/Session.h"

namespace apps::nyctl {

struct Options : Account {
    bool json = false;
    bool isShell = false;       // the commands come from standard input, one after the other
    bool isUserChosen = false;  // said, not taken from the system
};

}  // namespace apps::nyctl
