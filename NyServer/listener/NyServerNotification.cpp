#include "NyServer/listener/NyServerNotification.h"

#include <algorithm>
#include <cstring>

#include "NyServer/listener/NyServerApp.h"

namespace {

// Any program can post the message with any address. Posted blocks are moveable; a handle that is
// the address itself is that of fixed memory, and so of anything that lives on the heap.
HGLOBAL postedBlockAt(void* address) {
    const HGLOBAL block = ::GlobalHandle(address);
    return block == address ? nullptr : block;
}

}  // namespace

NyServerNotification::NyServerNotification(WPARAM size, LPARAM address, NyServerApp* listener)
    : m_block(postedBlockAt(reinterpret_cast<void*>(address))), m_listener(listener) {
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
    if (!NySe::isNotification(header[0])) return;
    m_action = static_cast<NySe::ActionType>(header[0]);
    const size_t announced = static_cast<size_t>(std::max<LONG>(header[1], 0));
    const size_t length = std::min(announced, size - sizeof header);
    if (length > 0) m_payload.Attach(bytes + sizeof header, static_cast<UINT>(length));
}
