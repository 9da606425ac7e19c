#include "NyServer/host/MachineIdentity.h"

#include <cstdio>

namespace {

CString hexPairs(const std::vector<BYTE>& bytes, LPCTSTR separator) {
    CString text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0) text += separator;
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", bytes[i]);
        text += CString(pair);
    }
    return text;
}

}  // namespace

CString machineidentity::hardwareAddress(const std::vector<port::Adapter>& adapters,
                                         const CString& ipAddress, LPCTSTR separator) {
    CString text;
    for (const port::Adapter& adapter : adapters) {
        for (const std::string& address : adapter.addresses) {
            text = hexPairs(adapter.hardwareAddress, separator);
            if (ipAddress.CompareNoCase(CString(address.c_str())) == 0) return text;
        }
    }
    return text;
}

CString machineidentity::serialText(DWORD serial) {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%x", static_cast<unsigned int>(serial));
    return CString(digits);
}
