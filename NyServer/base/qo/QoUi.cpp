#include "QoUi.h"

#include "QoUiLoadString.h"
#include "QoUiSwitchResource.h"
#include "QoWaitCursor.h"

HINSTANCE QoUi::getHInstanceModuleRc(const CString& baseName, const CString& extension,
                                     const CString& language) {
    if (!language.IsEmpty()) {
        const HINSTANCE variant = ::GetModuleHandleW(baseName + language + extension);
        if (variant != nullptr) return variant;
    }
    return ::GetModuleHandleW(baseName + extension);
}

CString QoUiLoadString::loadString() const {
    CString text;
    const HINSTANCE instance = getResourceHandle();
    if (instance != nullptr) text.LoadString(instance, m_id);
    return text;
}

HINSTANCE QoUiLoadString::getResourceHandle() const {
    return AfxGetResourceHandle();
}

QoUiSwitchResource::QoUiSwitchResource(HINSTANCE instance) : m_previous(AfxGetResourceHandle()) {
    setResourceHandle(instance);
}

QoUiSwitchResource::~QoUiSwitchResource() {
    AfxSetResourceHandle(m_previous);
}

void QoUiSwitchResource::setResourceHandle(HINSTANCE instance) {
    if (instance != nullptr) AfxSetResourceHandle(instance);
}

QoWaitCursor::QoWaitCursor() : m_previous(::SetCursor(::LoadCursorW(nullptr, IDC_WAIT))) {}

QoWaitCursor::~QoWaitCursor() {
    ::SetCursor(m_previous);
}
