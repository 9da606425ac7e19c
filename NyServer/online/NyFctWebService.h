// NyFctWebService: what an application asks the maker's web service: whether it can be reached, and
// which version of a product is published.
//
// The settings are the module's own and every request reads them: which service is asked, and the
// address of a custom one. Nothing here locks. Requests may run on several threads at a time, as
// long as no setter runs beside them or beside another setter.
//
// A request waits as long as WinINet does, and shows the wait cursor meanwhile.
#pragma once

#include <afx.h>

#include "NyServer/NyServerApi.h"

namespace NyFctWebService {

// Which service is asked. Applications keep these numbers: do not change them.
enum ServerUrlType : int {
    serverUrlProduction = 0,
    serverUrlTest = 1,
    serverUrlCustom = 2,
};

// True when the page by which the service says that it is there can be opened, whatever the
// server's answer to it is. False for every failure.
NYSERVER_API bool pingWebServer();

// The version published for a product, as the service writes it. Empty when the service publishes
// none, on every failure, and when the production service cannot be opened: it is tried first,
// whichever service is asked. Only the part of the answer that has arrived by the first look at it
// counts. It may come from the system's cache, and passes by the configured proxy. An error box is
// shown, and waited for, when an answer that has been opened cannot be read.
NYSERVER_API CString getOnlineVersionFromSoftwareID(long softwareId);

// The production service unless a setter has said otherwise.
NYSERVER_API ServerUrlType getServerUrlType();

// Requests go to the test service when `test`, else to the production service; a custom address is
// forgotten.
NYSERVER_API void connectToTestBase(bool test);

// Requests go to the service at `url`, an absolute address that ends in a slash.
// REQUIRES: the string lives, unchanged, until connectToTestBase or setCustomServerUrl has been
// called again: a reference to it is kept, not a copy.
NYSERVER_API void setCustomServerUrl(const CString& url);
void setCustomServerUrl(CString&& url) = delete;  // would refer to a text that is gone

}  // namespace NyFctWebService

namespace NyFctWebService::Util {

// Keeps a copy of the folder's path for temporary files. No request writes one. The path stays as
// it was when there is no memory for the copy.
NYSERVER_API void setStrTempFolderPath(const CString& path);

}  // namespace NyFctWebService::Util
