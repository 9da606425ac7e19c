// What a notification says, for people and for programs.
#pragma once

#include <afx.h>

#include <string>

#include "apps/nyctl/Output.h"
#include "NyServer/framing/NySeActions.h"

namespace apps::nyctl {

struct Notice {
    // Time of day, number and its words, class and text of the object inside, size of the payload.
    std::string line;
    // The same: time (UTC), action, words, class, object, size in bytes. class is null when the
    // payload is no object that this program knows, object also when it has no fields to show.
    Record record;
};

// The notification as it comes now. `payload` is what the server sent, standing at its start.
Notice readNotice(NySe::ActionType action, CMemFile& payload);

}  // namespace apps::nyctl
