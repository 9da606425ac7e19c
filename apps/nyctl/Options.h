// The options before the command.
#pragma once

#include "apps/common/Session.h"

namespace apps::nyctl {

struct Options : Account {
    bool json = false;
    bool isShell = false;       // commands are read from standard input
    bool isUserChosen = false;  // given, not the login name
};

}  // namespace apps::nyctl
