#include "afx.h"

namespace {

constexpr BYTE kWidePrefix = 0xFF;
constexpr WORD kWideMark = 0xFFFE;
constexpr size_t kLongestString = 0x7FFFFFFF;

}  // namespace

void AfxWriteStringLength(CArchive& ar, UINT_PTR length, BOOL unicode) {
    if (unicode) ar << kWidePrefix << kWideMark;
    if (length < 0xFF) {
        ar << static_cast<BYTE>(length);
    } else if (length < 0xFFFE) {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(length);
    } else {
        // FFFE in two bytes would read as the mark of a wide string.
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(length);
    }
}

UINT_PTR AfxReadStringLength(CArchive& ar, int& charSize) {
    charSize = 1;
    BYTE byteLength;
    ar >> byteLength;
    if (byteLength != 0xFF) return byteLength;

    WORD wordLength;
    ar >> wordLength;
    if (wordLength == kWideMark) {
        charSize = sizeof(WCHAR);
        ar >> byteLength;
        if (byteLength != 0xFF) return byteLength;
        ar >> wordLength;
    }
    if (wordLength != 0xFFFF) return wordLength;

    DWORD longLength;
    ar >> longLength;
    if (longLength > kLongestString) {
        AfxThrowArchiveException(CArchiveException::badIndex, ar.m_strFileName);
    }
    return longLength;
}

CArchive& operator<<(CArchive& ar, const CString& text) {
    const size_t length = static_cast<size_t>(text.GetLength());
    AfxWriteStringLength(ar, length, TRUE);
    ar.Write(text.GetString(), static_cast<int>(length * sizeof(WCHAR)));
    return ar;
}

CArchive& operator>>(CArchive& ar, CString& text) {
    int charSize = 0;
    const size_t length = AfxReadStringLength(ar, charSize);
    // Checked before memory is asked for: a short archive may announce any length.
    if (length * static_cast<size_t>(charSize) > ar.BytesLeft()) {
        AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
    }
    const int characters = static_cast<int>(length);
    CString read;
    if (charSize == sizeof(WCHAR)) {
        ar.EnsureRead(read.GetBufferSetLength(characters),
                      static_cast<UINT>(length * sizeof(WCHAR)));
    } else {
        std::string narrow(length, 0);
        ar.EnsureRead(narrow.data(), static_cast<UINT>(length));
        read = CString(narrow.c_str(), characters);
    }
    text = std::move(read);
    return ar;
}
