#include "apps/common/Program.h"

#include <pwd.h>
#include <unistd.h>

namespace apps {

std::vector<std::string> commandLineArguments(int count, const char* const* words) {
    return {words + (count > 0), words + count};
}

std::string loginName() {
    const passwd* const user = ::getpwuid(::geteuid());
    return user != nullptr ? user->pw_name : "user";
}

}  // namespace apps
