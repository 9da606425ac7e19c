#include "NyServer/listener/NyServerNotification.h"

#include <algorithm>
#include <cstring>

#include "NyServer/listener/NyServerApp.h"

// Any program can post the message with any address.
NyServerNotification::NyServerNotification(WPARAM size, LPARAM address, NyServerApp* listener)
    : m_block(::GlobalHandle(reinterpret_cast<void*>(address))), m_listener(listener) {
    if (!m_block) return;
    const size_t present = std::min<size_t>(size, ::GlobalSize(m_block.get()));
    readMessage(reinterpret_cast<BYTE*>(address), present);
}

NyServerNotification::~NyServerNotification() {
    if (m_listener) m_listener->decreasePostMsgCount();
}

void NyServerNotification::readMessage(BYTE* bytes, size_t size) {
    if (size < NySe::kActionHeaderBytes) return;
    LONG header[2];
    static_assert(sizeof header == NySe::kActionHeaderBytes);
    std::memcpy(header, bytes, sizeof header);
    m_action = static_cast<NySe::ActionType>(header[0]);
    const size_t announced = static_cast<size_t>(std::max<LONG>(header[1], 0));
    const size_t length = std::min(announced, size - sizeof header);
    if (length > 0) m_payload.Attach(bytes + sizeof header, static_cast<UINT>(length));
}
