// How many posted messages the system lets wait for one thread.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

// The system's setting, read anew; 3600 when it cannot be read.
DWORD readSystemPostMessageLimit();

// Nine tenths of a system's limit, rounded down. Limits too large for the result give one below 1.
long shareOfPostMessageLimit(DWORD systemLimit);
