// The exit status of nyctl. Scripts test these numbers: do not change them.
#pragma once

namespace apps::nyctl {

enum ExitStatus : int {
    exitYes = 0,       // yes, granted, done
    exitNo = 1,        // no, refused
    exitUsage = 2,     // the command line was wrong
    exitNoAnswer = 3,  // no connection, or no answer
    exitTimeOut = 4    // timed out
};

}  // namespace apps::nyctl
