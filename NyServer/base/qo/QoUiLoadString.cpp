#include "QoUiLoadString.h"

CString QoUiLoadString::loadString() const {
    CString text;
    const HINSTANCE instance = getResourceHandle();
    if (instance != nullptr) text.LoadString(instance, m_id);
    return text;
}

HINSTANCE QoUiLoadString::getResourceHandle() const {
    return AfxGetResourceHandle();
}
