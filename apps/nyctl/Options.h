// What is said before the command.
#pragma once

#include <string>

struct Options {
    std::string server = "127.0.0.1:42015";  // HOST:PORT
    std::string user;                        // who registers, in UTF-8
    bool json = false;
    bool isShell = false;       // the commands come from standard input, one after the other
    bool isUserChosen = false;  // said, not taken from the system
};
