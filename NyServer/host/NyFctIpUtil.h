// Who this machine is on the network.
#pragma once

#include <afx.h>

#include "NyServer/NyServerApi.h"

// May be called from any thread; each call starts and cleans up Windows Sockets for itself. No call
// reports an error: text that is not known is empty. A look-up may block for as long as the name
// service takes.
namespace NyFctIpUtil {

// The first IPv4 address of the local host name in dotted decimals; empty when it is not known.
NYSERVER_API CString _getIpAddress();

// The first IPv4 address of the named host in dotted decimals; empty when the name does not resolve
// or takes more than 255 bytes in the active ANSI code page. "localhost" in any case stands for the
// local host's own name, which is known only while the process has started Windows Sockets
// elsewhere.
NYSERVER_API CString _getIpAddressFromHostName(const CString& hostName);

// What tells this machine from others: the hardware address of the network adapter that carries
// _getIpAddress(), in pairs of lower-case hex digits joined by "-"; of the last adapter when none
// does; and the serial number of the system volume in lower-case hex when there is no such address.
// "0" when that is unknown too.
NYSERVER_API CString getStrMachineID();

}  // namespace NyFctIpUtil
