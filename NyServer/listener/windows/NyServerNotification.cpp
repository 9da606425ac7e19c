#include "NyServer/listener/NyServerNotification.h"

#include <algorithm>

#include "NyServer/framing/NySeNotification.h"
#include "NyServer/listener/NyServerApp.h"

namespace {

// Any program can post the message with any address. Posted blocks are moveable; a handle that
// equals the address is that of fixed memory, and so of any heap block.
HGLOBAL postedBlockAt(void* address) {
    const HGLOBAL block = ::GlobalHandle(address);
    return block == address ? nullptr : block;
}

}  // namespace

NyServerNotification::NyServerNotification(WPARAM size, LPARAM address, NyServerApp* listener)
    : m_block(postedBlockAt(reinterpret_cast<void*>(address))), m_listener(listener) {
    if (!m_block) {
        if (address != 0) m_listener = nullptr;  // the message is not from the listener
        return;
    }
    const size_t present = std::min<size_t>(size, ::GlobalSize(m_block.get()));
    readMessage(reinterpret_cast<BYTE*>(address), present);
}

NyServerNotification::~NyServerNotification() {
    if (!m_listener) return;
    if (m_block)
        m_listener->decreasePostMsgCount();
    else
        m_listener->consumeEmptyMessage();
}

void NyServerNotification::readMessage(BYTE* bytes, size_t size) {
    const NySe::FoundNotification found = NySe::findNotification(bytes, size);
    m_action = found.action;
    if (found.payload) m_payload.Attach(found.payload, found.length);
}
