#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "NyServer/base/WindowsPrelude.h"

struct Key {};

namespace {

constexpr Key theKey;

std::mutex settingsLock;
std::map<std::wstring, std::string> values;

}  // namespace

const HKEY HKEY_LOCAL_MACHINE = &theKey;
const HKEY HKEY_CURRENT_USER = &theKey;

LSTATUS RegCreateKeyW(HKEY, const wchar_t*, HKEY* key) {
    *key = &theKey;
    return ERROR_SUCCESS;
}

LSTATUS RegOpenKeyExW(HKEY, const wchar_t*, DWORD, DWORD, HKEY* key) {
    *key = &theKey;
    return ERROR_SUCCESS;
}

LSTATUS RegOverridePredefKey(HKEY, HKEY) {
    const std::lock_guard guard(settingsLock);
    values.clear();
    return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY) {
    return ERROR_SUCCESS;
}

LSTATUS RegDeleteTreeW(HKEY, const wchar_t*) {
    return ERROR_SUCCESS;
}

LSTATUS RegSetValueExW(HKEY, const wchar_t* name, DWORD, DWORD, const BYTE* data, DWORD size) {
    const std::lock_guard guard(settingsLock);
    values[name] = {reinterpret_cast<const char*>(data), size};
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExW(HKEY, const wchar_t* name, DWORD*, DWORD*, BYTE* data, DWORD* size) {
    const std::lock_guard guard(settingsLock);
    const auto found = values.find(name);
    if (found == values.end() || found->second.size() > *size) return ERROR_FILE_NOT_FOUND;
    *size = static_cast<DWORD>(found->second.copy(reinterpret_cast<char*>(data), *size));
    return ERROR_SUCCESS;
}
