// The text of a notification.
#pragma once

#include <afx.h>

#include <string>

namespace apps {

// Returns the object of a notification in UTF-8: its class and fields, as
// "NySeConnection: Server=c, id 1, opens 1"; the class alone if it is not a record of a central
// server; "no object" for null.
std::string notificationContent(const CObject* object);

// Returns the local time of day, as "17:05:59.123".
std::string timeOfDay(const SYSTEMTIME& utc);

}  // namespace apps
