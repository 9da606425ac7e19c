// CString: text in UTF-16 code units.
#pragma once

#include "afxplatform.h"
#include "detail/AfxText.h"

// A value: copies are independent of each other. One object may be used by one thread at a time.
// Lengths and indices count UTF-16 code units; a string may hold zero characters inside.
class NYBASE_API CString {
  public:
    CString() = default;
    CString(const CString&) = default;
    CString(CString&&) noexcept = default;
    CString& operator=(const CString&) = default;
    CString& operator=(CString&&) noexcept = default;
    ~CString() = default;

    // Null gives the empty string.
    CString(LPCWSTR text) : m_text(text != nullptr ? text : emptyText()) {}
    // From the active ANSI code page; null gives the empty string.
    CString(LPCSTR text);
    CString(LPCWSTR text, int length) : m_text(text, clampCount(length)) {}
    CString(LPCSTR text, int length);
    explicit CString(WCHAR character, int count = 1) : m_text(clampCount(count), character) {}

    int GetLength() const { return static_cast<int>(m_text.size()); }
    BOOL IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    LPCWSTR GetString() const { return m_text.c_str(); }
    operator LPCWSTR() const { return m_text.c_str(); }

    // Returns the character at `index`, 0 at GetLength(). Throws CInvalidArgException outside
    // 0..GetLength().
    WCHAR GetAt(int index) const;
    WCHAR operator[](int index) const { return GetAt(index); }

    CString& operator+=(const CString& text) {
        m_text += text.m_text;
        return *this;
    }
    CString& operator+=(LPCWSTR text) {
        if (text != nullptr) m_text += text;
        return *this;
    }
    CString& operator+=(WCHAR character) {
        m_text += character;
        return *this;
    }

    // Compares by code unit. Returns a number below, equal to or above 0. A zero character ends the
    // comparison.
    int Compare(LPCWSTR other) const;
    // The same with A to Z folded to lower case, and no other letter, so that tables keep one order
    // on every machine.
    int CompareNoCase(LPCWSTR other) const;

    // Returns the index of the first match at or after `start` (below 0 counts as 0), or -1.
    int Find(LPCWSTR text, int start = 0) const;
    int Find(WCHAR character, int start = 0) const;
    // Returns the index of the last match, or -1.
    int ReverseFind(WCHAR character) const;

    // Return copies of parts. Counts and starts beyond the end are reduced to it; negative ones
    // count as 0.
    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int start) const;
    CString Mid(int start, int count) const;

    // Replaces the text by printf rules, where %s takes a wide string. Windows builds only, as is
    // all that follows up to GetBuffer.
    void Format(LPCWSTR format, ...);
    // The same with a format from the string tables, as LoadString finds it; the empty string when
    // there is none.
    void Format(UINT formatId, ...);

    // Loads the text with that identifier from the first module that has it: the current resource
    // handle's, then the extension modules, the newest first; or from the string table of
    // `instance` alone. Returns FALSE, with the text unchanged, if there is none or it is empty.
    BOOL LoadString(UINT id);
    BOOL LoadString(HINSTANCE instance, UINT id);

    // Returns a writable buffer of at least `minLength` characters and a terminator, valid until
    // ReleaseBuffer, which must be the next call on this object.
    LPWSTR GetBuffer(int minLength = 0);
    // Sets the length after writing into the buffer; -1: up to the first zero character.
    void ReleaseBuffer(int newLength = -1);
    // Like GetBuffer, with the length set to exactly `length`.
    LPWSTR GetBufferSetLength(int length);

  private:
    static LPCWSTR emptyText() { return _T(""); }
    static size_t clampCount(int count) { return count > 0 ? static_cast<size_t>(count) : 0; }

    AfxText m_text;
};

NYBASE_API CString operator+(const CString& left, const CString& right);
NYBASE_API CString operator+(const CString& left, LPCWSTR right);
NYBASE_API CString operator+(LPCWSTR left, const CString& right);

inline bool operator==(const CString& left, const CString& right) {
    return left.Compare(right) == 0;
}
inline bool operator==(const CString& left, LPCWSTR right) {
    return left.Compare(right) == 0;
}
inline bool operator<(const CString& left, const CString& right) {
    return left.Compare(right) < 0;
}
