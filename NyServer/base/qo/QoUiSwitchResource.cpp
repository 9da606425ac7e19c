#include "QoUiSwitchResource.h"

QoUiSwitchResource::QoUiSwitchResource(HINSTANCE instance) : m_previous(AfxGetResourceHandle()) {
    setResourceHandle(instance);
}

QoUiSwitchResource::~QoUiSwitchResource() {
    AfxSetResourceHandle(m_previous);
}

void QoUiSwitchResource::setResourceHandle(HINSTANCE instance) {
    if (instance != nullptr) AfxSetResourceHandle(instance);
}
