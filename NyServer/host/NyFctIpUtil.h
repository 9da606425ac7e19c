// The network addresses and the identity of this machine.
#pragma once

#include <afx.h>

#include "NyServer/NyServerApi.h"

// Any thread may call these functions. On Windows each starts and cleans up Winsock itself. None
// throws or reports an error: the result is empty if it is unknown or out of memory. A look-up may
// block for as long as the name service takes.
namespace NyFctIpUtil {

// Returns the first IPv4 address of the local host name as dotted text; empty if unknown. On Linux,
// where that name often has a loopback address alone, it is then that of the first adapter in use.
NYSERVER_API CString _getIpAddress();

// Returns the first IPv4 address of the named host as dotted text. Empty if the name does not
// resolve or is longer than 255 bytes in the active ANSI code page, in UTF-8 on Linux. "localhost",
// in any case, means the local host name, which on Windows is known only while the process has
// started Winsock elsewhere.
NYSERVER_API CString _getIpAddressFromHostName(const CString& hostName);

// Returns an identifier of this machine: the hardware address of the network adapter that has
// _getIpAddress(), as pairs of lower-case hex digits joined by "-"; of the last adapter if none has
// it. Without a hardware address, returns the serial number of the system volume in lower-case hex,
// on Linux a number that is computed from /etc/machine-id or else that of the file system; "0" if
// that is unknown too. Returns the serial number or an empty text if out of memory.
NYSERVER_API CString getStrMachineID();

}  // namespace NyFctIpUtil
