#pragma once

#include <random>
#include <string>

#include "NyServer/base/WindowsPrelude.h"

// Gives this process a registry of its own for the machine's settings, in which the system's limit
// of posted messages is missing until it is set. Its name is random: runs that were killed leave
// theirs behind.
class LimitSetting {
  public:
    static constexpr wchar_t kPath[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Windows";

    LimitSetting() {
        ::RegCreateKeyW(HKEY_CURRENT_USER, m_path.c_str(), &m_root);
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root);
    }
    explicit LimitSetting(DWORD value) : LimitSetting() { set(value); }
    ~LimitSetting() {
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        ::RegCloseKey(m_root);
        ::RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
    }
    LimitSetting(const LimitSetting&) = delete;
    LimitSetting& operator=(const LimitSetting&) = delete;

    void set(DWORD value) { set(REG_DWORD, &value, sizeof value); }
    void set(DWORD type, const void* data, DWORD size) {
        HKEY key = nullptr;
        ::RegCreateKeyW(HKEY_LOCAL_MACHINE, kPath, &key);
        ::RegSetValueExW(key, L"USERPostMessageLimit", 0, type, static_cast<const BYTE*>(data),
                         size);
        ::RegCloseKey(key);
    }
    void makeEmptyKey() {
        HKEY key = nullptr;
        ::RegCreateKeyW(HKEY_LOCAL_MACHINE, kPath, &key);
        ::RegCloseKey(key);
    }

  private:
    const std::wstring m_path =
        L"Software\\NyListenerTest" + std::to_wstring(std::random_device()());
    HKEY m_root = nullptr;
};
