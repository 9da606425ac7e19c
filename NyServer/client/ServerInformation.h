// The texts of the server information. Internal.
#pragma once

#include <afx.h>

namespace serverinformation {

// Returns the label padded with spaces to 30 characters (a longer one is kept), a tab, ": ", the
// value.
CString labelledLine(const CString& label, const CString& value);

// Returns a time in seconds since 1970-01-01 UTC as this computer's local time, in the default
// format of the user's locale. "Invalid DateTime" for a time before 1970.
CString timeText(long seconds);

}  // namespace serverinformation
