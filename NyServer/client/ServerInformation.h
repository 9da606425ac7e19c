// The texts of the server information. Internal.
#pragma once

#include <afx.h>

namespace serverinformation {

// The label padded with spaces to 30 characters (a longer one stays whole), a tab, ": ", the value.
CString labelledLine(const CString& label, const CString& value);

// A time in seconds since 1970-01-01 UTC as this computer's local time, in the form that the user's
// locale has by default. "Invalid DateTime" for a time before 1970.
CString timeText(long seconds);

}  // namespace serverinformation
