#include "NyServer/online/ServiceAddress.h"

CString serviceAddress(NyFctWebService::ServerUrlType type, const CString& customUrl) {
    switch (type) {
        case NyFctWebService::serverUrlTest:
            return testAddress();
        case NyFctWebService::serverUrlCustom:
            return customUrl;
        default:
            return productionAddress();
    }
}
