#include "apps/common/Program.h"

#include <memory>

#include "apps/common/Utf8.h"
#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <shellapi.h>

namespace apps {

std::vector<std::string> commandLineArguments(int, const char* const*) {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> words(
        ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(toUtf8(CString(words.get()[i])));
    return arguments;
}

std::string loginName() {
    WCHAR name[256];
    DWORD length = 256;
    return ::GetUserNameW(name, &length) ? toUtf8(CString(name)) : std::string("user");
}

}  // namespace apps
