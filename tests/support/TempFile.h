#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "tests/support/WideText.h"

// A folder of the test's own, removed with the files in it when it goes. Names are ASCII.
class TempFolder {
  public:
    // A new one: what an interrupted run has left behind is in others.
    TempFolder() {
        std::random_device random;
        for (int tries = 0; m_path.empty(); ++tries) {
            const auto tried =
                std::filesystem::temp_directory_path() / ("ny" + std::to_string(random()));
            if (std::filesystem::create_directory(tried))
                m_path = tried;
            else if (tries == 100)
                throw std::runtime_error("no temporary folder");
        }
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    WideText path(std::string_view name) const {
        const std::string narrow = (m_path / name).string();
        return WideText(narrow.begin(), narrow.end());
    }

    // The path of a new file with this content.
    WideText file(std::string_view name, std::string_view content) const {
        std::ofstream(m_path / name, std::ios::binary) << content;
        return path(name);
    }

    std::string content(std::string_view name) const {
        std::ifstream in(m_path / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    bool has(std::string_view name) const { return std::filesystem::exists(m_path / name); }
    auto count() const { return std::distance(std::filesystem::directory_iterator(m_path), {}); }

  private:
    std::filesystem::path m_path;
};
