#include "tests/wireshark/Tshark.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;

class TempFolder {
  public:
    TempFolder() : m_path(fs::temp_directory_path() / "nyserver-wireshark-XXXXXX") {
        if (::mkdtemp(m_path.data()) == nullptr) throw std::runtime_error("no temporary folder");
    }
    ~TempFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string file(const std::string& name) const { return m_path + "/" + name; }

  private:
    std::string m_path;
};

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string quoted(const std::string& word) {
    return "'" + word + "'";
}

}  // namespace

tshark::Result tshark::decode(const Capture& capture, const std::string& arguments) {
    const TempFolder folder;
    capture.save(folder.file("capture.pcap"));
    const std::string command =
        "HOME=" + quoted(folder.file("")) + " WIRESHARK_CONFIG_DIR=" + quoted(folder.file("")) +
        " timeout 60 tshark -n -X lua_script:" + quoted(NY_DISSECTOR) +
        " -o nyserver.ports:" + std::to_string(kServerPort) + " -r " +
        quoted(folder.file("capture.pcap")) + " " + arguments + " > " +
        quoted(folder.file("output")) + " 2> " + quoted(folder.file("complaints"));
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(folder.file("output")),
            contentOf(folder.file("complaints"))};
}
