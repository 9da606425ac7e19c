// The identity of this machine. Internal to the module.
#pragma once

#include <afx.h>

#include <functional>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"

// After the prelude, which it needs.
#include <iphlpapi.h>

namespace machineidentity {

// Enough adapters for nearly every machine.
inline constexpr size_t kUsualAdapterCount = 16;

// GetAdaptersInfo, or a replacement of it in tests.
using AdapterQuestion = std::function<DWORD(IP_ADAPTER_INFO* buffer, ULONG* size)>;

// Returns the system's adapters, linked from the first element; all zero if there are none. The
// first buffer has room for `expectedCount` adapters and grows if necessary. REQUIRES:
// expectedCount >= 1.
std::vector<IP_ADAPTER_INFO> readAdapters(size_t expectedCount = kUsualAdapterCount,
                                          const AdapterQuestion& ask = &::GetAdaptersInfo);

// Returns the hardware address of the first adapter in the list that has `ipAddress`, as pairs of
// lower-case hex digits with `separator` between them. If none has it, returns that of the last
// adapter, empty if it has none. Empty for a null list.
CString hardwareAddress(const IP_ADAPTER_INFO* first, const CString& ipAddress, LPCWSTR separator);

// Returns the serial number of a volume ("C") in lower-case hex without leading zeros; "0" if there
// is no such volume.
CString volumeSerial(LPCWSTR drive);

// Returns hardwareAddress with separator "-", or the serial number of the volume if that is empty.
CString identityOf(const IP_ADAPTER_INFO* first, const CString& ipAddress, LPCWSTR drive);

}  // namespace machineidentity
