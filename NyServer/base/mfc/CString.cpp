#include "afx.h"

#include <algorithm>
#include <cstring>

#include "AnsiText.h"

namespace {

WCHAR foldCase(WCHAR character) {
    return character >= 'A' && character <= 'Z' ? static_cast<WCHAR>(character + ('a' - 'A'))
                                                : character;
}

template <class Fold>
int compareText(LPCWSTR left, LPCWSTR right, Fold fold) {
    for (;; ++left, ++right) {
        const int difference = int{fold(*left)} - int{fold(*right)};
        if (difference != 0 || *left == 0) return difference;
    }
}

}  // namespace

CString::CString(LPCSTR text)
    : m_text(text != nullptr ? textFromAnsi(text, std::strlen(text)) : emptyText()) {}

CString::CString(LPCSTR text, int length) : m_text(textFromAnsi(text, clampCount(length))) {}

WCHAR CString::GetAt(int index) const {
    if (index < 0 || index > GetLength()) AfxThrowInvalidArgException();
    return m_text.c_str()[index];
}

int CString::Compare(LPCWSTR other) const {
    return compareText(GetString(), other, [](WCHAR character) { return character; });
}

int CString::CompareNoCase(LPCWSTR other) const {
    return compareText(GetString(), other, foldCase);
}

int CString::Find(LPCWSTR text, int start) const {
    const size_t index = m_text.find(text, clampCount(start));
    return index == AfxText::npos ? -1 : static_cast<int>(index);
}

int CString::Find(WCHAR character, int start) const {
    const size_t index = m_text.find(character, clampCount(start));
    return index == AfxText::npos ? -1 : static_cast<int>(index);
}

int CString::ReverseFind(WCHAR character) const {
    const size_t index = m_text.rfind(character);
    return index == AfxText::npos ? -1 : static_cast<int>(index);
}

CString CString::Left(int count) const {
    return Mid(0, count);
}

CString CString::Right(int count) const {
    return Mid(GetLength() - std::clamp(count, 0, GetLength()));
}

CString CString::Mid(int start) const {
    return Mid(start, GetLength());
}

CString CString::Mid(int start, int count) const {
    const size_t first = std::min(clampCount(start), m_text.size());
    CString part;
    part.m_text = m_text.substr(first, clampCount(count));
    return part;
}

LPWSTR CString::GetBuffer(int minLength) {
    if (minLength > GetLength()) m_text.resize(clampCount(minLength));
    return m_text.data();
}

void CString::ReleaseBuffer(int newLength) {
    m_text.resize(newLength >= 0 ? static_cast<size_t>(newLength)
                                 : std::char_traits<WCHAR>::length(m_text.c_str()));
}

LPWSTR CString::GetBufferSetLength(int length) {
    m_text.resize(clampCount(length));
    return m_text.data();
}

CString operator+(const CString& left, const CString& right) {
    return CString(left) += right;
}
CString operator+(const CString& left, LPCWSTR right) {
    return CString(left) += right;
}
CString operator+(LPCWSTR left, const CString& right) {
    return CString(left) += right;
}
