// A connection of which the bytes come as the fuzzer likes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "tests/support/Bytes.h"

// What is read is taken from copies of a Drip too, as from a socket's handle.
class Drip {
  public:
    // The last byte says how many come at once.
    Drip(const uint8_t* bytes, size_t size)
        : m_left(std::make_shared<Bytes>(bytes, bytes + size)),
          m_atOnce(size == 0 ? 1 : 80 - bytes[size - 1] % 80) {}

    // One read, as of a connection: the number of bytes put into `buffer`, 0 when all were read.
    int operator()(char* buffer, int length, int = 0) const {
        const int count = std::min({length, m_atOnce, static_cast<int>(m_left->size())});
        if (count < 1) return count;
        std::memcpy(buffer, m_left->data(), static_cast<size_t>(count));
        m_left->erase(m_left->begin(), m_left->begin() + count);
        return count;
    }

    const Bytes& left() const { return *m_left; }
    int atOnce() const { return m_atOnce; }

  private:
    std::shared_ptr<Bytes> m_left;
    int m_atOnce;
};
