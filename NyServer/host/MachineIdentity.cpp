#include "NyServer/host/MachineIdentity.h"

#include <algorithm>

namespace {

// Adapters may be added between two calls; the number of calls is bounded.
constexpr int kMostQuestions = 8;

size_t adaptersIn(ULONG bytes) {
    return (bytes + sizeof(IP_ADAPTER_INFO) - 1) / sizeof(IP_ADAPTER_INFO);
}

CString hexPairs(const IP_ADAPTER_INFO& adapter, LPCWSTR separator) {
    CString text;
    const UINT length = std::min<UINT>(adapter.AddressLength, sizeof adapter.Address);
    for (UINT i = 0; i < length; ++i) {
        CString pair;
        pair.Format(L"%02x", adapter.Address[i]);
        if (i > 0) text += separator;
        text += pair;
    }
    return text;
}

}  // namespace

std::vector<IP_ADAPTER_INFO> machineidentity::readAdapters(size_t expectedCount,
                                                           const AdapterQuestion& ask) {
    static_assert(kUsualAdapterCount * sizeof(IP_ADAPTER_INFO) == 11264);
    std::vector<IP_ADAPTER_INFO> adapters(expectedCount);
    for (int question = 1; question <= kMostQuestions; ++question) {
        ULONG size = static_cast<ULONG>(adapters.size() * sizeof adapters[0]);
        if (ask(adapters.data(), &size) != ERROR_BUFFER_OVERFLOW) return adapters;
        adapters.assign(std::max(adaptersIn(size), adapters.size()), IP_ADAPTER_INFO{});
    }
    return adapters;
}

CString machineidentity::hardwareAddress(const IP_ADAPTER_INFO* first, const CString& ipAddress,
                                         LPCWSTR separator) {
    CString text;
    for (const IP_ADAPTER_INFO* adapter = first; adapter != nullptr; adapter = adapter->Next) {
        for (const IP_ADDR_STRING* address = &adapter->IpAddressList; address != nullptr;
             address = address->Next) {
            text = hexPairs(*adapter, separator);
            if (ipAddress.CompareNoCase(CString(address->IpAddress.String)) == 0) return text;
        }
    }
    return text;
}

CString machineidentity::volumeSerial(LPCWSTR drive) {
    CString path;
    path.Format(L"%s:\\", drive);
    DWORD serial = 0;
    if (!::GetVolumeInformationW(path, nullptr, 0, &serial, nullptr, nullptr, nullptr, 0)) {
        serial = 0;
    }
    CString text;
    text.Format(L"%x", static_cast<UINT>(serial));
    return text;
}

CString machineidentity::identityOf(const IP_ADAPTER_INFO* first, const CString& ipAddress,
                                    LPCWSTR drive) {
    const CString address = hardwareAddress(first, ipAddress, L"-");
    return address.IsEmpty() ? volumeSerial(drive) : address;
}
