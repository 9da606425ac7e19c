#pragma once

#include <afx.h>

// What tells this machine from others: the serial number of its system volume in lower-case hex
// digits; empty when the system cannot say.
CString machineIdentity();
