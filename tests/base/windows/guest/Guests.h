// The guest modules as a test handles them.
#pragma once

#include <afxdllx.h>

#include "NyServer/base/UniqueHandle.h"
#include "tests/base/windows/guest/resource.h"

struct LibraryTraits {
    using Handle = HMODULE;
    static Handle invalid() { return nullptr; }
    static void close(Handle library) { ::FreeLibrary(library); }
};

// Loaded while it lives.
class LoadedGuest {
  public:
    explicit LoadedGuest(int number)
        : m_library(::LoadLibraryW(number == 1 ? L"guest_module1.dll" : L"guest_module2.dll")) {}

    HMODULE handle() const { return m_library.get(); }
    void free() { m_library.reset(); }

    void join() const { function<void (*)()>("joinGuest")(); }
    void dismiss(BOOL all = FALSE) const { function<void (*)(BOOL)>("dismissGuest")(all); }
    AFX_EXTENSION_MODULE& state() const {
        return *function<AFX_EXTENSION_MODULE* (*)()>("guestState")();
    }

  private:
    template <class Function>
    Function function(LPCSTR name) const {
        return reinterpret_cast<Function>(
            reinterpret_cast<void*>(::GetProcAddress(m_library.get(), name)));
    }

    UniqueHandle<LibraryTraits> m_library;
};
