#include "NyServer/client/ServerInformation.h"

#include <ctime>
#include <locale>
#include <sstream>

#include "NyServer/base/port/Port.h"

namespace {

// In the locale of the environment, whatever the program's own is; in the classic one if there is
// none of that name. Wide, because its encoding may be any.
std::wstring formatInUserLocale(const std::tm& local) {
    std::wostringstream text;
    try {
        text.imbue(std::locale(""));
    } catch (const std::runtime_error&) {
        text.imbue(std::locale::classic());
    }
    const std::wstring format = L"%x %X";
    std::use_facet<std::time_put<wchar_t>>(text.getloc())
        .put(text, text, L' ', &local, format.data(), format.data() + format.size());
    return text.str();
}

std::basic_string<WCHAR> toUtf16(const std::wstring& text) {
    std::basic_string<WCHAR> units;
    for (const auto character : text) {
        if (character >= 0x10000) {
            units += static_cast<WCHAR>(0xD7C0 + (character >> 10));
            units += static_cast<WCHAR>(0xDC00 | (character & 0x3FF));
        } else {
            units += static_cast<WCHAR>(character);
        }
    }
    return units;
}

}  // namespace

CString serverinformation::timeText(long seconds) {
    const std::time_t time = seconds;
    std::tm local{};
    if (seconds < 0 || ::localtime_r(&time, &local) == nullptr)
        return CString(_T("Invalid DateTime"));
    return CString(toUtf16(formatInUserLocale(local)).c_str());
}
