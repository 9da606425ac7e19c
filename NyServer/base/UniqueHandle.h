#pragma once

#include <utility>

// The one owner of a platform handle. Traits names the type and says how it is closed:
//
//   struct FileTraits {
//       using Handle = HANDLE;
//       static Handle invalid() { return INVALID_HANDLE_VALUE; }
//       static void close(Handle handle) { ::CloseHandle(handle); }
//   };
//   using UniqueFile = UniqueHandle<FileTraits>;
//
// The handle held before is always closed when another takes its place.
template <class Traits>
class UniqueHandle {
  public:
    using Handle = typename Traits::Handle;

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
    explicit operator bool() const { return m_handle != Traits::invalid(); }

    // Hands the handle to the caller, who closes it.
    [[nodiscard]] Handle release() { return std::exchange(m_handle, Traits::invalid()); }

    // REQUIRES: nobody else owns `handle`.
    void reset(Handle handle = Traits::invalid()) {
        Handle old = std::exchange(m_handle, handle);
        if (old != Traits::invalid() && old != handle) Traits::close(old);
    }

  private:
    Handle m_handle = Traits::invalid();
};
