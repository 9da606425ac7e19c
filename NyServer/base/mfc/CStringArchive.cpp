#include "afx.h"
#include "AfxCopy.h"

namespace {

constexpr BYTE kWidePrefix = 0xFF;
constexpr WORD kWideMark = 0xFFFE;
constexpr size_t kLongForm = 0xFF;  // characters from which on the length takes more than a byte
constexpr size_t kLongestString = 0x7FFFFFFF;
// The mark as the first three of four bytes, of which the last is the length.
constexpr DWORD kShortWide = DWORD{kWidePrefix} | DWORD{kWideMark} << 8;

bool isShortWide(const BYTE* prefix) {
    DWORD start;
    std::memcpy(&start, prefix, sizeof start);
    return (start & 0xFFFFFF) == kShortWide && prefix[3] < kLongForm;
}

}  // namespace

void AfxWriteStringLength(CArchive& ar, UINT_PTR length, BOOL unicode) {
    if (unicode) ar << kWidePrefix << kWideMark;
    if (length < kLongForm) {
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
    const size_t bytes = length * sizeof(WCHAR);
    if (length < kLongForm && ar.roomLeft() >= sizeof(DWORD) + bytes) {
        // The usual string is one run: the mark, the length and the characters.
        const DWORD prefix = kShortWide | static_cast<DWORD>(length) << 24;
        std::memcpy(ar.m_out, &prefix, sizeof prefix);
        afxCopyShort(ar.m_out + sizeof prefix, text.GetString(), bytes);
        ar.m_out += sizeof prefix + bytes;
        return ar;
    }
    AfxWriteStringLength(ar, length, TRUE);
    ar.Write(text.GetString(), static_cast<int>(bytes));
    return ar;
}

CArchive& operator>>(CArchive& ar, CString& text) {
    if (ar.unreadBytes() >= sizeof(DWORD) && isShortWide(ar.m_in)) {
        const BYTE length = ar.m_in[sizeof(DWORD) - 1];
        const size_t run = sizeof(DWORD) + length * sizeof(WCHAR);
        if (ar.unreadBytes() >= run) {
            afxCopyShort(text.GetBufferSetLength(length), ar.m_in + sizeof(DWORD),
                         length * sizeof(WCHAR));
            ar.m_in += run;
            return ar;
        }
    }
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
