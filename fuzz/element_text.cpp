// The online service's replies: the element text is found exactly if it is between its tags.
#include "fuzz/HeldMemory.h"
#include "fuzz/Require.h"
#include "NyServer/online/ElementText.h"

static bool stands(const CString& found, const CString& text) {
    return text.Find(_T("<V>") + found + _T("</V>")) >= 0 ||
           text.Find(_T("<V ") + found + _T("</V>")) >= 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const CString text(reinterpret_cast<const WCHAR*>(bytes), static_cast<int>(size / 2));
    const HeldMemory held;
    const CString found = elementText(text, _T("V"));
    held.requireAtMost(2 * size + 4096);
    require(found.IsEmpty() || stands(found, text), "what is found stands between its tags");
    if (text.Find(_T("</V>")) >= 0) return 0;
    require(elementText(_T("<V>") + text + _T("</V>"), _T("V")) == text, "an element is found");
    if (text.Find(_T("<V>")) >= 0) return 0;
    require(elementText(_T("<V ") + text + _T("</V>"), _T("V")) == text, "so are attributes");
    return 0;
}
