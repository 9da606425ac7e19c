// The text of a notification.
#pragma once

#include <afx.h>

#include <chrono>
#include <string>

namespace apps {

// Returns the object of a notification in UTF-8: its class and fields, as
// "NySeConnection: Server=c, id 1, opens 1"; the class alone if it is not a record of a central
// server; "no object" for null.
std::string notificationContent(const CObject* object);

// Return the local time of day, as "17:05:59.123", and the time in UTC, as
// "2026-11-21T16:05:59.123Z". Not for several threads at once.
std::string timeOfDay(std::chrono::system_clock::time_point time);
std::string isoTime(std::chrono::system_clock::time_point time);

}  // namespace apps
