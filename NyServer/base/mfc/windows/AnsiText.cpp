#include "../AnsiText.h"

AfxText textFromAnsi(LPCSTR text, size_t byteCount) {
    const int bytes = static_cast<int>(byteCount);
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text, bytes, nullptr, 0);
    AfxText wide(static_cast<size_t>(length), 0);
    ::MultiByteToWideChar(CP_ACP, 0, text, bytes, wide.data(), length);
    return wide;
}
