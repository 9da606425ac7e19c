// A capture of conversations over TCP, made without a network.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "tests/support/Bytes.h"

// Packets one millisecond apart, as a pcap file holds them.
class Capture {
  public:
    // A segment between two ports of one machine. `captured`: how many of its bytes the capture
    // has. REQUIRES: at most 65,000 bytes.
    void addSegment(int from, int to, const Bytes& bytes, size_t captured = SIZE_MAX);

    // The same in segments of at most `segment` bytes.
    void add(int from, int to, const Bytes& bytes, size_t segment = 60'000);

    // Throws std::runtime_error when the file cannot be written.
    void save(const std::string& path) const;

  private:
    unsigned int sequenceNumber(int from, int to, size_t length);

    std::string m_packets;
    unsigned int m_microseconds = 0;
    std::map<std::pair<int, int>, unsigned int> m_next;  // sequence numbers, by direction
};
