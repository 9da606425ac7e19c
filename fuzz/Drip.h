// A connection whose bytes arrive in pieces that the fuzzer chooses.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "tests/support/Bytes.h"

// Copies of a Drip read from the same bytes, like copies of a socket's handle.
class Drip {
  public:
    // The last byte is the size of the pieces.
    Drip(const uint8_t* bytes, size_t size)
        : m_left(std::make_shared<Bytes>(bytes, bytes + size)),
          m_atOnce(size == 0 ? 1 : 80 - bytes[size - 1] % 80) {}

    // Reads like a connection. Returns the number of bytes stored in `buffer`, 0 at the end.
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
