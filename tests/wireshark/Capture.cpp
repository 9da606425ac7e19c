#include "tests/wireshark/Capture.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <fstream>
#include <stdexcept>

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr unsigned int kStartSeconds = 1'700'000'000;
constexpr unsigned int kRawIp = 101;  // packets begin with their IP header
constexpr unsigned int kLongestPacket = 262'144;
constexpr size_t kIpHeader = 20;
constexpr size_t kTcpHeader = 20;

template <class Value>
void append(std::string& to, Value value) {
    to.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <class Value>
void appendBigEndian(std::string& to, Value value) {
    for (size_t i = sizeof value; i > 0; --i) to += static_cast<char>(value >> (8 * (i - 1)));
}

std::string ipHeader(size_t length) {
    std::string header;
    appendBigEndian<std::uint16_t>(header, 0x4500);  // version 4, header of five words
    appendBigEndian(header, static_cast<std::uint16_t>(length));
    appendBigEndian<std::uint32_t>(header, 0);
    appendBigEndian<std::uint16_t>(header, 0x4006);  // time to live 64, TCP
    appendBigEndian<std::uint16_t>(header, 0);       // checksums are off
    appendBigEndian<std::uint32_t>(header, 0x7F000001);
    appendBigEndian<std::uint32_t>(header, 0x7F000001);
    return header;
}

std::string tcpHeader(int from, int to, unsigned int sequence, unsigned int acknowledged) {
    std::string header;
    appendBigEndian(header, static_cast<std::uint16_t>(from));
    appendBigEndian(header, static_cast<std::uint16_t>(to));
    appendBigEndian(header, sequence);
    appendBigEndian(header, acknowledged);
    appendBigEndian<std::uint16_t>(header, 0x5018);  // header of five words, push and acknowledge
    appendBigEndian<std::uint16_t>(header, 0xFFFF);
    appendBigEndian<std::uint32_t>(header, 0);
    return header;
}

}  // namespace

unsigned int Capture::sequenceNumber(int from, int to, size_t length) {
    unsigned int& next = m_next.try_emplace({from, to}, 1).first->second;
    return std::exchange(next, next + static_cast<unsigned int>(length));
}

void Capture::addSegment(int from, int to, const Bytes& bytes, size_t captured) {
    const unsigned int acknowledged = sequenceNumber(to, from, 0);
    std::string packet = ipHeader(kIpHeader + kTcpHeader + bytes.size());
    packet += tcpHeader(from, to, sequenceNumber(from, to, bytes.size()), acknowledged);
    packet.append(bytes.begin(), bytes.end());
    const size_t length = packet.size();
    packet.resize(kIpHeader + kTcpHeader + std::min(captured, bytes.size()));

    m_microseconds += 1000;
    append(m_packets, kStartSeconds + m_microseconds / 1'000'000);
    append(m_packets, m_microseconds % 1'000'000);
    append(m_packets, static_cast<std::uint32_t>(packet.size()));
    append(m_packets, static_cast<std::uint32_t>(length));
    m_packets += packet;
}

void Capture::add(int from, int to, const Bytes& bytes, size_t segment) {
    for (size_t at = 0; at < bytes.size(); at += segment) {
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const size_t count = std::min(segment, bytes.size() - at);
        addSegment(from, to, Bytes(first, first + static_cast<std::ptrdiff_t>(count)));
    }
}

void Capture::save(const std::string& path) const {
    std::string header;
    append<std::uint32_t>(header, 0xA1B2C3D4);
    append<std::uint16_t>(header, 2);
    append<std::uint16_t>(header, 4);
    append<std::uint64_t>(header, 0);
    append(header, kLongestPacket);
    append(header, kRawIp);
    std::ofstream file(path, std::ios::binary);
    file << header << m_packets;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}
