// Wraps a notification in the message for the window, and finds it in the bytes of that message.
#pragma once

#include "NyServer/framing/NySeMemFile.h"

namespace NySe {

// Sets `message` to the action with the contents of `body` as its payload. `body` is empty
// afterwards.
NYSERVER_API void wrapNotification(NySeMemFile& message, ActionType action, CMemFile& body);

// Points into the bytes in which it was found.
struct FoundNotification {
    ActionType action = noAction;
    BYTE* payload = nullptr;  // null when there is none
    UINT length = 0;          // in bytes
};

// Returns the notification in `size` bytes; noAction and no payload if they hold none. If fewer
// bytes are present than announced, the payload is those.
NYSERVER_API FoundNotification findNotification(BYTE* bytes, size_t size);

}  // namespace NySe
