#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "NyServer/base/WindowsPrelude.h"

// A file in the system's folder for temporary files, under a name that no other process uses,
// removed at the end.
class ScratchFile {
  public:
    // The file does not exist yet.
    explicit ScratchFile(const std::string& name) {
        wchar_t folder[MAX_PATH];
        ::GetTempPathW(MAX_PATH, folder);
        m_path = folder + std::wstring(L"nyserver-") + std::to_wstring(::GetCurrentProcessId()) +
                 L"-" + std::wstring(name.begin(), name.end());
        ::DeleteFileW(m_path.c_str());
    }
    ScratchFile(const std::string& name, const std::string& contents) : ScratchFile(name) {
        std::ofstream(m_path.c_str(), std::ios::binary) << contents;
    }
    ~ScratchFile() { ::DeleteFileW(m_path.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const wchar_t* path() const { return m_path.c_str(); }
    std::string contents() const {
        std::ifstream file(m_path.c_str(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool exists() const { return ::GetFileAttributesW(path()) != INVALID_FILE_ATTRIBUTES; }

  private:
    std::wstring m_path;
};
