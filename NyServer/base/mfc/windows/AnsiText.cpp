#include "../AnsiText.h"

std::basic_string<WCHAR> textFromAnsi(LPCSTR text, size_t byteCount) {
    const int bytes = static_cast<int>(byteCount);
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text, bytes, nullptr, 0);
    std::basic_string<WCHAR> wide(static_cast<size_t>(length), 0);
    ::MultiByteToWideChar(CP_ACP, 0, text, bytes, wide.data(), length);
    return wide;
}
