#include "NyServer/base/port/Port.h"

// After the prelude, which it needs.
#include <iphlpapi.h>

#include <algorithm>

namespace port {
namespace {

// Enough adapters for nearly every machine.
constexpr std::size_t kUsualAdapterCount = 16;
// Adapters may be added between two calls; the number of calls is bounded.
constexpr int kMostQuestions = 8;

std::vector<IP_ADAPTER_INFO> readAdapters() {
    std::vector<IP_ADAPTER_INFO> found(kUsualAdapterCount);
    for (int question = 1; question <= kMostQuestions; ++question) {
        ULONG size = static_cast<ULONG>(found.size() * sizeof found[0]);
        const DWORD result = ::GetAdaptersInfo(found.data(), &size);
        if (result == ERROR_SUCCESS) return found;
        if (result != ERROR_BUFFER_OVERFLOW) break;
        const std::size_t count = (size + sizeof found[0] - 1) / sizeof found[0];
        found.assign(std::max(count, found.size()), IP_ADAPTER_INFO{});
    }
    return {};
}

Adapter describe(const IP_ADAPTER_INFO& found) {
    Adapter adapter;
    const UINT length = std::min<UINT>(found.AddressLength, sizeof found.Address);
    adapter.hardwareAddress.assign(found.Address, found.Address + length);
    for (const IP_ADDR_STRING* address = &found.IpAddressList; address; address = address->Next)
        adapter.addresses.push_back(address->IpAddress.String);
    return adapter;
}

}  // namespace

std::string toUtf8(const WCHAR* text, std::size_t length) {
    const int count = static_cast<int>(length);
    const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, text, count, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(bytes), 0);
    ::WideCharToMultiByte(CP_UTF8, 0, text, count, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

std::basic_string<WCHAR> fromUtf8(const char* text, std::size_t length) {
    const int bytes = static_cast<int>(length);
    const int count = ::MultiByteToWideChar(CP_UTF8, 0, text, bytes, nullptr, 0);
    std::basic_string<WCHAR> wide(static_cast<std::size_t>(count), 0);
    ::MultiByteToWideChar(CP_UTF8, 0, text, bytes, wide.data(), count);
    return wide;
}

bool toSystemText(const WCHAR* text, char* target, int size) {
    return size > 0 &&
           ::WideCharToMultiByte(CP_ACP, 0, text, -1, target, size, nullptr, nullptr) != 0;
}

std::basic_string<WCHAR> computerName() {
    WCHAR name[255] = L"";
    DWORD size = 255;
    return ::GetComputerNameW(name, &size) ? name : L"";
}

std::vector<Adapter> adapters() {
    const std::vector<IP_ADAPTER_INFO> found = readAdapters();
    std::vector<Adapter> list;
    for (const auto* next = found.data(); next; next = next->Next) list.push_back(describe(*next));
    return list;
}

DWORD systemSerial() {
    DWORD serial = 0;
    return ::GetVolumeInformationW(L"C:\\", nullptr, 0, &serial, nullptr, nullptr, nullptr, 0)
               ? serial
               : 0;
}

}  // namespace port
