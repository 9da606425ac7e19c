// The base addresses of the service. Not exported.
#pragma once

#include "NyServer/online/NyFctWebService.h"

// Absolute HTTP addresses that end in a slash. Chosen when the library is built.
CString productionAddress();
CString testAddress();

// The address that pages of the service of that type are named from; the production address for a
// type that is none.
CString serviceAddress(NyFctWebService::ServerUrlType type, const CString& customUrl);
