// The identity of this machine. Internal to the module.
#pragma once

#include <afx.h>

#include <vector>

#include "NyServer/base/port/Port.h"

namespace machineidentity {

// Returns the hardware address of the first adapter in the list that has `ipAddress`, as pairs of
// lower-case hex digits with `separator` between them. If none has it, returns that of the last
// adapter with an address, empty if it has none. Empty for an empty list.
CString hardwareAddress(const std::vector<port::Adapter>& adapters, const CString& ipAddress,
                        LPCTSTR separator);

// Returns `serial` in lower-case hex without leading zeros.
CString serialText(DWORD serial);

}  // namespace machineidentity
