#include <arpa/inet.h>
#include <netpacket/packet.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>

#include "NyServer/base/port/Port.h"
#include "NyServer/base/port/posix/Interfaces.h"

namespace port {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void appendUtf8(std::string& text, char32_t character) {
    const auto continuation = [&](int shift) {
        text += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | (character >> 6));
        continuation(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | (character >> 12));
        continuation(6);
        continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

bool isHighSurrogate(WCHAR unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(WCHAR unit) {
    return (unit & 0xFC00) == 0xDC00;
}

bool isSurrogate(char32_t character) {
    return character >= 0xD800 && character <= 0xDFFF;
}

// The character at the beginning of UTF-8 text, and the number of its bytes.
struct Decoded {
    char32_t character;
    std::size_t bytes;
};

Decoded decode(const char* text, std::size_t length) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return {first, 1};
    const std::size_t more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4) return {kReplacement, 1};
    char32_t character = first & (0x3F >> more);
    for (std::size_t at = 1; at <= more; ++at) {
        if (at >= length || (byte(at) & 0xC0) != 0x80) return {kReplacement, at};
        character = character << 6 | (byte(at) & 0x3F);
    }
    constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    const bool isValid =
        character >= kLeast[more] && character <= 0x10FFFF && !isSurrogate(character);
    return {isValid ? character : kReplacement, more + 1};
}

void addAddress(Adapter& adapter, const sockaddr& address) {
    if (address.sa_family == AF_PACKET) {
        const auto& hardware = reinterpret_cast<const sockaddr_ll&>(address);
        const std::size_t length =
            std::min<std::size_t>(hardware.sll_halen, sizeof hardware.sll_addr);
        adapter.hardwareAddress.assign(hardware.sll_addr, hardware.sll_addr + length);
    } else if (address.sa_family == AF_INET) {
        const in_addr number = reinterpret_cast<const sockaddr_in&>(address).sin_addr;
        char text[INET_ADDRSTRLEN] = "";
        if (::inet_ntop(AF_INET, &number, text, sizeof text)) adapter.addresses.push_back(text);
    }
}

// A system that is new or has no identity has another text, or none.
bool isMachineId(const std::string& text) {
    return text.size() == 32 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

// FNV-1a: the identity itself must not leave the machine. Do not change: others store the result.
DWORD hashOf(const std::string& text) {
    DWORD hash = 2166136261;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619;
    return hash;
}

}  // namespace

std::string toUtf8(const WCHAR* text, std::size_t length) {
    std::string utf8;
    for (std::size_t at = 0; at < length; ++at) {
        char32_t character = text[at];
        if (isHighSurrogate(text[at]) && at + 1 < length && isLowSurrogate(text[at + 1]))
            character = 0x10000 + ((character - 0xD800) << 10) + (text[++at] - 0xDC00u);
        appendUtf8(utf8, isSurrogate(character) ? kReplacement : character);
    }
    return utf8;
}

std::basic_string<WCHAR> fromUtf8(const char* text, std::size_t length) {
    std::basic_string<WCHAR> wide;
    while (length > 0) {
        const Decoded next = decode(text, length);
        text += next.bytes;
        length -= next.bytes;
        if (next.character < 0x10000) {
            wide += static_cast<WCHAR>(next.character);
        } else {
            wide += static_cast<WCHAR>(0xD800 + ((next.character - 0x10000) >> 10));
            wide += static_cast<WCHAR>(0xDC00 + ((next.character - 0x10000) & 0x3FF));
        }
    }
    return wide;
}

bool toSystemText(const WCHAR* text, char* target, int size) {
    const std::string utf8 = toUtf8(text, std::char_traits<WCHAR>::length(text));
    if (size < 0 || utf8.size() >= static_cast<std::size_t>(size)) return false;
    std::memcpy(target, utf8.c_str(), utf8.size() + 1);
    return true;
}

std::basic_string<WCHAR> computerName() {
    char name[256] = "";
    if (::gethostname(name, sizeof name - 1) != 0) return {};
    return fromUtf8(name, std::strlen(name));
}

// The loopback device is no adapter. The system lists each address by itself, with the name of its
// device, or that name and a label after a colon.
std::vector<Adapter> adapters() {
    const Interfaces first = readInterfaces();
    std::vector<Adapter> list;
    std::vector<std::string> names;
    for (const ifaddrs* next = first.get(); next; next = next->ifa_next) {
        if (!next->ifa_addr || (next->ifa_flags & IFF_LOOPBACK)) continue;
        const std::string name(next->ifa_name, std::strcspn(next->ifa_name, ":"));
        std::size_t at = 0;
        while (at < names.size() && names[at] != name) ++at;
        if (at == names.size()) {
            names.push_back(name);
            list.emplace_back();
        }
        addAddress(list[at], *next->ifa_addr);
    }
    return list;
}

// The file identifies an installed system. What names its volume is on many file systems the same
// on every machine, or another number after each start.
DWORD systemSerial() {
    std::ifstream file("/etc/machine-id");
    std::string id;
    if (std::getline(file, id) && isMachineId(id)) return hashOf(id);
    struct statvfs volume {};
    return ::statvfs("/", &volume) == 0 ? static_cast<DWORD>(volume.f_fsid) : 0;
}

}  // namespace port
