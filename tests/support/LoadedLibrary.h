// A DLL that a test loads and frees.
#pragma once

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/base/WindowsPrelude.h"

// Loaded while it lives, unless freed earlier.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(LPCWSTR name) : m_library(::LoadLibraryW(name)) {}

    // Null when it could not be loaded.
    HMODULE handle() const { return m_library.get(); }
    void free() { m_library.reset(); }

    // A pointer to an exported function or datum.
    template <class Pointer>
    Pointer symbol(LPCSTR name) const {
        return reinterpret_cast<Pointer>(
            reinterpret_cast<void*>(::GetProcAddress(m_library.get(), name)));
    }

  private:
    NySe::UniqueHandle<HMODULE, ::FreeLibrary> m_library;
};
