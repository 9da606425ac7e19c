#include "NyServer/client/ServerInformation.h"

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <oleauto.h>

namespace {

constexpr ULONGLONG kSecondsFrom1601To1970 = 11'644'473'600;
constexpr ULONGLONG kTicksPerSecond = 10'000'000;

using UniqueSystemString = NySe::UniqueHandle<BSTR, ::SysFreeString>;

// Returns false for a time before 1970.
bool toLocalTime(long seconds, SYSTEMTIME& local) {
    if (seconds < 0) return false;
    ULARGE_INTEGER ticks;
    ticks.QuadPart = (kSecondsFrom1601To1970 + static_cast<ULONGLONG>(seconds)) * kTicksPerSecond;
    const FILETIME fileTime{ticks.LowPart, ticks.HighPart};
    SYSTEMTIME universal;
    return ::FileTimeToSystemTime(&fileTime, &universal) &&
           ::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local);
}

// Returns null if the date cannot be formatted.
UniqueSystemString formatInUserLocale(DATE date) {
    BSTR text = nullptr;
    ::VarBstrFromDate(date, LANG_USER_DEFAULT, LOCALE_NOUSEROVERRIDE, &text);
    return UniqueSystemString(text);
}

}  // namespace

CString serverinformation::timeText(long seconds) {
    SYSTEMTIME local;
    DATE date = 0;
    UniqueSystemString text;
    if (toLocalTime(seconds, local) && ::SystemTimeToVariantTime(&local, &date)) {
        text = formatInUserLocale(date);
    }
    return text ? CString(text.get()) : CString(_T("Invalid DateTime"));
}
