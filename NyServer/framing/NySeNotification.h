// How a notification is put into the message that the window gets, and taken out of its bytes.
#pragma once

#include "NyServer/framing/NySeMemFile.h"

namespace NySe {

// Makes `message` the one for the window: the action, and as its payload all that `body` holds.
// `body` is empty then.
NYSERVER_API void wrapNotification(NySeMemFile& message, ActionType action, CMemFile& body);

// Borrowed from the bytes that it was found in.
struct FoundNotification {
    ActionType action = noAction;
    BYTE* payload = nullptr;  // null when there is none
    UINT length = 0;          // in bytes
};

// The notification in `size` bytes; noAction, and no payload, when they hold none. Of a payload
// that is shorter than announced, what is there.
NYSERVER_API FoundNotification findNotification(BYTE* bytes, size_t size);

}  // namespace NySe
