#include <netdb.h>
#include <strings.h>
#include <unistd.h>

#include <cstring>

#include "NyServer/base/port/Port.h"
#include "NyServer/base/port/posix/Interfaces.h"

namespace port {
namespace {

bool isLoopback(in_addr address) {
    return ntohl(address.s_addr) >> 24 == IN_LOOPBACKNET;
}

in_addr addressIn(const sockaddr& address) {
    return reinterpret_cast<const sockaddr_in&>(address).sin_addr;
}

// A machine may be named "localhost", but all programs rely on that name's being the loopback.
bool isThisHost(const char* name, const char* own) {
    return *name == '\0' || (::strcasecmp(name, own) == 0 && ::strcasecmp(name, "localhost") != 0);
}

// Finds the first address of an adapter that is in use. Returns false if there is none.
bool findAdapterAddress(in_addr& address) {
    constexpr unsigned kInUse = IFF_UP | IFF_RUNNING;
    const Interfaces first = readInterfaces();
    for (const ifaddrs* next = first.get(); next; next = next->ifa_next) {
        const bool isAdapter = (next->ifa_flags & (kInUse | IFF_LOOPBACK)) == kInUse;
        if (!isAdapter || !next->ifa_addr || next->ifa_addr->sa_family != AF_INET) continue;
        address = addressIn(*next->ifa_addr);
        return true;
    }
    return false;
}

}  // namespace

// No name stands for this host. Many systems list this host's name with a loopback address, which
// identifies no host and which no other one can use.
bool lookUpAddress(const char* name, in_addr& address) {
    char own[NI_MAXHOST] = "";
    if (!localHostName(own, sizeof own) && *name == '\0') return false;
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(*name ? name : own, nullptr, &wanted, &found) != 0) return false;
    address = addressIn(*found->ai_addr);
    ::freeaddrinfo(found);
    if (isThisHost(name, own) && isLoopback(address)) findAdapterAddress(address);
    return true;
}

LookUp lookUpName(in_addr address, char* name, int size) {
    sockaddr_in host{};
    host.sin_family = AF_INET;
    host.sin_addr = address;
    char found[NI_MAXHOST];
    const auto* const general = reinterpret_cast<const sockaddr*>(&host);
    if (::getnameinfo(general, sizeof host, found, sizeof found, nullptr, 0, NI_NAMEREQD) != 0)
        return LookUp::notFound;
    const std::size_t length = std::strlen(found);
    if (size < 0 || length >= static_cast<std::size_t>(size)) return LookUp::tooLong;
    std::memcpy(name, found, length + 1);
    return LookUp::found;
}

bool localHostName(char* name, int size) {
    return size > 0 && ::gethostname(name, static_cast<std::size_t>(size)) == 0;
}

}  // namespace port
