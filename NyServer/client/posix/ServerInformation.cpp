#include "NyServer/client/ServerInformation.h"

#include <ctime>
#include <locale>
#include <sstream>

#include "NyServer/base/port/Port.h"

namespace {

// In the locale of the environment, whatever the program's own is; in the classic one if there is
// none of that name.
std::string formatInUserLocale(const std::tm& local) {
    std::ostringstream text;
    try {
        text.imbue(std::locale(""));
    } catch (const std::runtime_error&) {
        text.imbue(std::locale::classic());
    }
    const std::string format = "%x %X";
    std::use_facet<std::time_put<char>>(text.getloc())
        .put(text, text, ' ', &local, format.data(), format.data() + format.size());
    return text.str();
}

}  // namespace

CString serverinformation::timeText(long seconds) {
    const std::time_t time = seconds;
    std::tm local{};
    if (seconds < 0 || ::localtime_r(&time, &local) == nullptr)
        return CString(_T("Invalid DateTime"));
    const std::string text = formatInUserLocale(local);
    return CString(port::fromUtf8(text.data(), text.size()).c_str());
}
