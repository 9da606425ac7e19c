// The addresses of the network devices, as the system lists them.
#pragma once

#include <ifaddrs.h>
#include <net/if.h>

#include <memory>

namespace port {

using Interfaces = std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)>;

// Returns null on failure.
inline Interfaces readInterfaces() {
    ifaddrs* first = nullptr;
    return {::getifaddrs(&first) == 0 ? first : nullptr, &::freeifaddrs};
}

}  // namespace port
