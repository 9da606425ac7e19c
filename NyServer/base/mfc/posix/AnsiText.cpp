#include "../AnsiText.h"

// There is no ANSI code page here; Latin-1 is the one that maps each byte to itself.
AfxText textFromAnsi(LPCSTR text, size_t byteCount) {
    AfxText wide;
    wide.reserve(byteCount);
    for (size_t i = 0; i < byteCount; ++i) wide += static_cast<WCHAR>(static_cast<BYTE>(text[i]));
    return wide;
}
