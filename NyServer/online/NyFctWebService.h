// NyFctWebService: requests to the vendor's web service. They ask whether it is reachable and which
// version of a product is published.
//
// Threads: nothing is locked. The settings belong to the module, and every request reads them.
// Requests may run on several threads at the same time, but no setter may run at the same time as a
// request or another setter.
//
// A request blocks for as long as WinINet does, and shows the wait cursor. No function throws.
#pragma once

#include <afx.h>

#include "NyServer/NyServerApi.h"

namespace NyFctWebService {

// The service that requests go to. Applications store these numbers: do not change them.
enum ServerUrlType : int {
    serverUrlProduction = 0,
    serverUrlTest = 1,
    serverUrlCustom = 2,
};

// Returns whether the ping page of the service can be opened, whatever the response. Returns false
// on any failure.
NYSERVER_API bool pingWebServer();

// Returns the published version of a product, as the service writes it. Returns an empty text on
// any failure, if no version is published, and if the production service, which is always opened
// first, cannot be opened. Only the part of the response that is available at the first read
// counts. The response bypasses the configured proxy and may come from the system's cache. If a
// response cannot be read after it was opened, an error box is shown and the call waits for it.
NYSERVER_API CString getOnlineVersionFromSoftwareID(long softwareId);

// Returns the service that requests go to; the production service by default.
NYSERVER_API ServerUrlType getServerUrlType();

// Selects the test service, or the production service if not `test`. Discards a custom address.
NYSERVER_API void connectToTestBase(bool test);

// Selects the service at `url`, an absolute address that ends in a slash. REQUIRES: the string
// exists, unchanged, until the next call of connectToTestBase or setCustomServerUrl: a reference to
// it is stored, not a copy.
NYSERVER_API void setCustomServerUrl(const CString& url);
void setCustomServerUrl(CString&& url) = delete;  // the reference would dangle

}  // namespace NyFctWebService

namespace NyFctWebService::Util {

// Stores a copy of the path of the folder for temporary files. No request writes one. The path is
// not changed if out of memory.
NYSERVER_API void setStrTempFolderPath(const CString& path);

}  // namespace NyFctWebService::Util
