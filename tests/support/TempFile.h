#pragma once

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include "NyServer/base/WindowsPrelude.h"

// A folder of the test's own, removed with the files in it when it goes.
class TempFolder {
  public:
    // A new one: what an interrupted run has left behind is in others.
    TempFolder() {
        wchar_t base[MAX_PATH];
        ::GetTempPathW(MAX_PATH, base);
        std::random_device random;
        for (int tries = 0; m_path.empty(); ++tries) {
            const std::wstring tried = std::wstring(base) + L"ny" + std::to_wstring(random());
            if (::CreateDirectoryW(tried.c_str(), nullptr))
                m_path = tried;
            else if (tries == 100)
                throw std::runtime_error("no temporary folder");
        }
    }
    ~TempFolder() {
        WIN32_FIND_DATAW found;
        HANDLE search = ::FindFirstFileW(path(L"*").c_str(), &found);
        do ::DeleteFileW(path(found.cFileName).c_str());
        while (::FindNextFileW(search, &found));
        ::FindClose(search);
        ::RemoveDirectoryW(m_path.c_str());
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::wstring path(std::wstring_view name) const { return m_path + L"\\" + std::wstring(name); }

    // The path of a new file with this content.
    std::wstring file(std::wstring_view name, std::string_view content) const {
        std::ofstream(narrow(path(name)), std::ios::binary) << content;
        return path(name);
    }

    std::string content(std::wstring_view name) const {
        std::ifstream in(narrow(path(name)), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    bool has(std::wstring_view name) const {
        return ::GetFileAttributesW(path(name).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

  private:
    static std::string narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

    std::wstring m_path;
};
