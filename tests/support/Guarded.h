#pragma once

#include <new>
#include <utility>

#include "NyServer/base/WindowsPrelude.h"

// An object in pages of its own, which cannot be touched any more once it is destroyed: whoever
// does so ends the program.
template <class Object>
class Guarded {
  public:
    template <class... Arguments>
    explicit Guarded(Arguments&&... arguments)
        : m_pages(
              ::VirtualAlloc(nullptr, sizeof(Object), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)),
          m_object(new (m_pages) Object(std::forward<Arguments>(arguments)...)) {}
    ~Guarded() {
        if (m_object) destroy();
        ::VirtualFree(m_pages, 0, MEM_RELEASE);
    }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;

    Object& operator*() { return *m_object; }
    Object* operator->() { return m_object; }
    void destroy() {
        std::exchange(m_object, nullptr)->~Object();
        DWORD before = 0;
        ::VirtualProtect(m_pages, sizeof(Object), PAGE_NOACCESS, &before);
    }

  private:
    void* m_pages;
    Object* m_object;
};
