#include "tests/online/TestAddresses.h"

#include <new>

#include "NyServer/online/ServiceAddress.h"

namespace {

const CString& ifMemoryIsLeft(const CString& address) {
    if (!addresses::isMemoryLeft) throw std::bad_alloc();
    return address;
}

}  // namespace

CString productionAddress() {
    return ifMemoryIsLeft(addresses::production);
}

CString testAddress() {
    return ifMemoryIsLeft(addresses::test);
}
