#include "NyServer/online/ServiceAddress.h"

CString productionAddress() {
    return _T(NY_SERVICE_PRODUCTION_URL);
}

CString testAddress() {
    return _T(NY_SERVICE_TEST_URL);
}
