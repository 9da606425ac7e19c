#include "QoWaitCursor.h"

QoWaitCursor::QoWaitCursor() : m_previous(::SetCursor(::LoadCursorW(nullptr, IDC_WAIT))) {}

QoWaitCursor::~QoWaitCursor() {
    ::SetCursor(m_previous);
}
