#include "../afx.h"

#include <cstdarg>
#include <cwchar>

// The platform's own _vsnwprintf, not the standard vswprintf: only there does %s mean a wide
// string.
void CString::Format(LPCWSTR format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = ::_vscwprintf(format, arguments);
    va_end(arguments);
    std::basic_string<WCHAR> text(length > 0 ? static_cast<size_t>(length) : 0, 0);
    ::_vsnwprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    m_text = std::move(text);
}
