// A program of this process: its arguments, and its user.
#pragma once

#include <string>
#include <vector>

namespace apps {

// Returns the program's arguments in UTF-8, without its own name. `count` and `words` are those of
// main; Windows has them in UTF-16 too, and those are used.
std::vector<std::string> commandLineArguments(int count, const char* const* words);

// Returns the login name of the user in UTF-8.
std::string loginName();

}  // namespace apps
