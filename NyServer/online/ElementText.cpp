#include "NyServer/online/ElementText.h"

namespace {

// Returns the index after `opening`, or -1.
int contentStart(const CString& text, const CString& opening) {
    const int position = text.Find(opening);
    return position < 0 ? -1 : position + opening.GetLength();
}

}  // namespace

CString elementText(const CString& text, const CString& tag) {
    int start = contentStart(text, _T("<") + tag + _T(">"));
    if (start < 0) start = contentStart(text, _T("<") + tag + _T(" "));
    if (start < 0) return {};
    const int end = text.Find(_T("</") + tag + _T(">"), start);
    return end < 0 ? CString() : text.Mid(start, end - start);
}
