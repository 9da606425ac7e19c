// Reply: the bytes that answer one request.
#pragma once

#include <afx.h>

#include <cstdint>
#include <string>
#include <string_view>

// Filled by the request's handler and then sent in one piece: clients take a scalar that comes in
// two for a missing one. A request without an answer leaves it empty.
class Reply {
  public:
    template <class Scalar>
    void scalar(Scalar value) {
        m_bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    // A message with an archived object; an empty one when its length cannot be announced.
    void message(std::string_view archive) {
        const bool fits = archive.size() <= kLongestMessage;
        scalar(fits ? static_cast<LONG>(archive.size()) : 0);
        if (fits) m_bytes += archive;
    }
    // In bytes, as the length of a message is announced in a LONG.
    static constexpr size_t kLongestMessage = INT32_MAX;

    // A message with one string.
    void text(const CString& text);

    void clear() { m_bytes.clear(); }
    const std::string& bytes() const { return m_bytes; }

  private:
    std::string m_bytes;
};
