// What a notification says, for people.
#pragma once

#include <afx.h>

#include <string>

namespace apps {

// The object that came with a notification in UTF-8: its class and what is in it, as
// "NySeConnection: Server=c, id 1, opens 1"; the class alone for one that is no record of a central
// server, "no object" for null.
std::string noticeContent(const CObject* object);

// The local time of day, as "17:05:59.123".
std::string timeOfDay(const SYSTEMTIME& utc);

}  // namespace apps
