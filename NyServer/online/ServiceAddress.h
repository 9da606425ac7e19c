// The base addresses of the service. Not exported.
#pragma once

#include "NyServer/online/NyFctWebService.h"

// Absolute HTTP addresses that end in a slash, chosen when the library is built. Their source holds
// nothing else, so that a test can replace it.
CString productionAddress();
CString testAddress();

// Returns the base address of the service of that type; the production address for an unknown type.
inline CString serviceAddress(NyFctWebService::ServerUrlType type, const CString& customUrl) {
    switch (type) {
        case NyFctWebService::serverUrlTest:
            return testAddress();
        case NyFctWebService::serverUrlCustom:
            return customUrl;
        default:
            return productionAddress();
    }
}
