// In a source of its own, so that a test can stand in for the services.
#include "NyServer/online/ServiceAddress.h"

CString productionAddress() {
    return _T(NY_SERVICE_PRODUCTION_URL);
}

CString testAddress() {
    return _T(NY_SERVICE_TEST_URL);
}
