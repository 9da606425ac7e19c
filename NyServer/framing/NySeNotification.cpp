#include "NyServer/framing/NySeNotification.h"

#include <algorithm>
#include <cstring>

void NySe::wrapNotification(NySeMemFile& message, ActionType action, CMemFile& body) {
    message.startWriteAction(action, schema2015);
    message.writeMemfile(body);
    message.stopWriting();
}

NySe::FoundNotification NySe::findNotification(BYTE* bytes, size_t size) {
    LONG header[2];
    static_assert(sizeof header == kActionHeaderBytes);
    if (size < sizeof header) return {};
    std::memcpy(header, bytes, sizeof header);
    if (!isNotification(header[0])) return {};
    const size_t announced = static_cast<size_t>(std::max<LONG>(header[1], 0));
    const size_t length = std::min(announced, size - sizeof header);
    return {static_cast<ActionType>(header[0]), length > 0 ? bytes + sizeof header : nullptr,
            static_cast<UINT>(length)};
}
