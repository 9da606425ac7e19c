// The owner of a platform handle.
#pragma once

#include <utility>

namespace NySe {

// The only owner of a handle, which `close` closes. `invalid` is the value that is not closed. A
// new handle replaces and closes the old one.
template <class Handle, auto close, Handle invalid = Handle{}>
class UniqueHandle {
  public:
    UniqueHandle() = default;
    explicit UniqueHandle(Handle handle) : m_handle(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : m_handle(other.release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        reset(other.release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { reset(); }

    [[nodiscard]] Handle get() const { return m_handle; }
    explicit operator bool() const { return m_handle != invalid; }

    // Returns the handle, which the caller then owns.
    [[nodiscard]] Handle release() { return std::exchange(m_handle, invalid); }

    // REQUIRES: nobody else owns `handle`.
    void reset(Handle handle = invalid) {
        const Handle old = std::exchange(m_handle, handle);
        if (old != invalid && old != handle) close(old);
    }

  private:
    Handle m_handle = invalid;
};

}  // namespace NySe
