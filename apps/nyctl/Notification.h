// A notification as text and as JSON.
#pragma once

#include <afx.h>

#include <string>

#include "apps/nyctl/Output.h"
#include "NyServer/framing/NySeActions.h"

namespace apps::nyctl {

struct Notification {
    // Time of day, number and its words, class and text of the object, size of the payload.
    std::string line;
    // The same: time (UTC), action, words, class, object, size in bytes. class is null if the
    // payload is not an object of a known class, object also if no fields are shown for it.
    Record record;
};

// Reads a notification that arrives now. `payload` is what the server sent, at position 0.
Notification readNotification(NySe::ActionType action, CMemFile& payload);

}  // namespace apps::nyctl
