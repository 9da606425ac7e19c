// Stream buffers over one block of memory each: the cheapest ones for a library that writes to
// streams.
#pragma once

#include <cstring>
#include <streambuf>
#include <vector>

#include "bench/peers/Peers.h"

namespace bench {

// Refuses writes beyond its capacity.
class FixedOutput : public std::streambuf {
  public:
    FixedOutput() : m_bytes(kPeerBytes) { rewind(); }

    void rewind() { setp(m_bytes.data(), m_bytes.data() + m_bytes.size()); }
    View view() const {
        return {reinterpret_cast<const unsigned char*>(pbase()),
                static_cast<size_t>(pptr() - pbase())};
    }

  protected:
    std::streamsize xsputn(const char* source, std::streamsize bytes) override {
        if (epptr() - pptr() < bytes) return 0;
        std::memcpy(pptr(), source, static_cast<size_t>(bytes));
        pbump(static_cast<int>(bytes));
        return bytes;
    }

  private:
    std::vector<char> m_bytes;
};

class FixedInput : public std::streambuf {
  public:
    void open(View view) {
        char* start = const_cast<char*>(reinterpret_cast<const char*>(view.data));
        setg(start, start, start + view.size);
    }

  protected:
    std::streamsize xsgetn(char* target, std::streamsize bytes) override {
        if (egptr() - gptr() < bytes) return 0;
        std::memcpy(target, gptr(), static_cast<size_t>(bytes));
        gbump(static_cast<int>(bytes));
        return bytes;
    }
};

}  // namespace bench
