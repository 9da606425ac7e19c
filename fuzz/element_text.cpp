// The online service's answers: what is cut out of a text stands in it, in front of a closing tag.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "NyServer/online/ElementText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    CString text;
    const size_t length = size / sizeof(WCHAR);
    std::memcpy(text.GetBufferSetLength(static_cast<int>(length)), bytes, length * sizeof(WCHAR));
    text.ReleaseBuffer(static_cast<int>(length));
    const CString found = elementText(text, _T("V"));
    if (!found.IsEmpty() && text.Find(found + _T("</V>")) < 0) std::abort();
    return 0;
}
