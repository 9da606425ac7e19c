#include "../afx.h"

#include <cstdarg>
#include <cwchar>

namespace {

// The platform's own _vsnwprintf, not the standard vswprintf: only there does %s mean a wide
// string.
std::wstring formatted(LPCWSTR format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = ::_vscwprintf(format, arguments);
    std::wstring text(length > 0 ? static_cast<size_t>(length) : 0, 0);
    ::_vsnwprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

}  // namespace

void CString::Format(LPCWSTR format, ...) {
    va_list arguments;
    va_start(arguments, format);
    m_text = formatted(format, arguments);
    va_end(arguments);
}

void CString::Format(UINT formatId, ...) {
    CString format;
    format.LoadString(formatId);
    va_list arguments;
    va_start(arguments, formatId);
    m_text = formatted(format, arguments);
    va_end(arguments);
}
