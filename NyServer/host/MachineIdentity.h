// What identifies this machine, from the pieces that the system gives. Internal to the module.
#pragma once

#include <afx.h>

#include <vector>

#include "NyServer/base/WindowsPrelude.h"

// After the prelude, which it needs.
#include <iphlpapi.h>

namespace machineidentity {

// As many adapters as nearly every machine has.
inline constexpr size_t kUsualAdapterCount = 16;

// The system's adapters, chained from the first element; all zeros when there are none. The memory
// asked for at first is that of `expectedCount` adapters, and grows when it does not do.
// REQUIRES: expectedCount >= 1.
std::vector<IP_ADAPTER_INFO> readAdapters(size_t expectedCount = kUsualAdapterCount);

// The hardware address of the first adapter in the chain that carries `ipAddress`, in pairs of
// lower-case hex digits with `separator` between them. When none carries it, that of the last
// adapter; empty when that has none, and for a null chain.
CString hardwareAddress(const IP_ADAPTER_INFO* first, const CString& ipAddress, LPCWSTR separator);

// The serial number of a volume ("C") in lower-case hex without leading zeros; "0" when there is no
// such volume.
CString volumeSerial(LPCWSTR drive);

// hardwareAddress with separator "-", or the volume's serial number where that is empty.
CString identityOf(const IP_ADAPTER_INFO* first, const CString& ipAddress, LPCWSTR drive);

}  // namespace machineidentity
