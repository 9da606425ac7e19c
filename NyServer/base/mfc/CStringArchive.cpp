#include "afx.h"
#include "detail/AfxShortText.h"

namespace {

constexpr BYTE kWidePrefix = AfxShortText::kWidePrefix;
constexpr WORD kWideMark = AfxShortText::kWideMark;
constexpr size_t kLongForm = AfxShortText::kLongForm;
constexpr size_t kLongestString = 0x7FFFFFFF;

// Not inlined, so that short texts need no buffer on the stack.
[[gnu::noinline]] CArchive& writeAnyText(CArchive& ar, const CString& text) {
    AfxWriteStringLength(ar, static_cast<UINT_PTR>(text.GetLength()), TRUE);
    ar.Write(text.GetString(), text.GetLength() * static_cast<int>(sizeof(WCHAR)));
    return ar;
}

}  // namespace

void AfxWriteStringLength(CArchive& ar, UINT_PTR length, BOOL unicode) {
    if (unicode) ar << kWidePrefix << kWideMark;
    if (length < kLongForm) {
        ar << static_cast<BYTE>(length);
    } else if (length < 0xFFFE) {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(length);
    } else {
        // FFFE in two bytes would be read as the mark of a wide string.
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
    const size_t run = AfxShortText::bytesOf(text);
    if (run == 0 || ar.spaceLeft() < run) [[unlikely]]
        return writeAnyText(ar, text);
    AfxShortText::write(ar.m_out, text);
    ar.m_out += run;
    return ar;
}

CArchive& operator>>(CArchive& ar, CString& text) {
    if (ar.unreadBytes() >= AfxShortText::kPrefixBytes && AfxShortText::isAt(ar.m_in)) {
        const size_t length = AfxShortText::lengthAt(ar.m_in);
        const size_t run = AfxShortText::kPrefixBytes + length * sizeof(WCHAR);
        if (ar.unreadBytes() >= run) {
            afxCopyShort(text.GetBufferSetLength(static_cast<int>(length)),
                         ar.m_in + AfxShortText::kPrefixBytes, length * sizeof(WCHAR));
            ar.m_in += run;
            return ar;
        }
    }
    int charSize = 0;
    const size_t length = AfxReadStringLength(ar, charSize);
    // Checked before memory is allocated: a short archive may announce any length.
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
