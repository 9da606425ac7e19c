// Reply: the bytes that answer one request.
#pragma once

#include <afx.h>

#include <string>

// Filled by the request's handler and then sent in one piece: clients take a scalar that comes in
// two for a missing one. A request without an answer leaves it empty.
class Reply {
  public:
    template <class Scalar>
    void scalar(Scalar value) {
        m_bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    // A message with an archived object.
    void message(const std::string& archive) {
        scalar(static_cast<LONG>(archive.size()));
        m_bytes += archive;
    }
    // A message with one string.
    void text(const CString& text);

    void clear() { m_bytes.clear(); }
    const std::string& bytes() const { return m_bytes; }

  private:
    std::string m_bytes;
};
