// Runs tshark with the dissector.
#pragma once

#include <string>

#include "tests/wireshark/Capture.h"

namespace tshark {

// Connections to this port are decoded whatever they begin with.
inline constexpr int kServerPort = 40000;
// For clients: the lower port of a connection decides who decodes it.
inline constexpr int kFirstClientPort = kServerPort + 1;

struct Result {
    int status;
    std::string output;
    std::string complaints;
};

// Decodes the capture with these further arguments; settings of the user are left out.
Result decode(const Capture& capture, const std::string& arguments);

}  // namespace tshark
