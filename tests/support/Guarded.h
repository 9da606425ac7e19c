#pragma once

#include <new>
#include <utility>

#include "tests/support/System.h"

// An object in pages of its own, which cannot be touched any more once it is destroyed: whoever
// does so ends the program.
template <class Object>
class Guarded {
  public:
    template <class... Arguments>
    explicit Guarded(Arguments&&... arguments)
        : m_pages(allocatePages(sizeof(Object))),
          m_object(new (m_pages) Object(std::forward<Arguments>(arguments)...)) {}
    ~Guarded() {
        if (m_object) destroy();
        freePages(m_pages, sizeof(Object));
    }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;

    Object& operator*() { return *m_object; }
    Object* operator->() { return m_object; }
    void destroy() {
        std::exchange(m_object, nullptr)->~Object();
        forbidAccess(m_pages, sizeof(Object));
    }

  private:
    void* m_pages;
    Object* m_object;
};
