#include "NyServer/listener/PostMessageLimit.h"

#include <cmath>

#include "NyServer/base/UniqueHandle.h"

namespace {

constexpr DWORD kLimitWithoutSetting = 3600;
constexpr double kShare = 0.9;

using UniqueRegistryKey = UniqueHandle<HKEY, ::RegCloseKey>;

UniqueRegistryKey openWindowsSettings() {
    HKEY key = nullptr;
    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                    L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Windows\\", 0, KEY_READ,
                    &key);
    return UniqueRegistryKey(key);
}

}  // namespace

DWORD readSystemPostMessageLimit() {
    const UniqueRegistryKey key = openWindowsSettings();
    DWORD limit = 0;
    DWORD size = sizeof limit;
    const LSTATUS status = ::RegQueryValueExW(key.get(), L"USERPostMessageLimit", nullptr, nullptr,
                                              reinterpret_cast<BYTE*>(&limit), &size);
    return status == ERROR_SUCCESS ? limit : kLimitWithoutSetting;
}

long shareOfPostMessageLimit(DWORD systemLimit) {
    return static_cast<long>(static_cast<long long>(std::floor(systemLimit * kShare)));
}
