// The guest modules as a test handles them.
#pragma once

#include <afxdllx.h>

#include "tests/base/windows/guest/resource.h"
#include "tests/support/LoadedLibrary.h"

class LoadedGuest : public LoadedLibrary {
  public:
    explicit LoadedGuest(int number)
        : LoadedLibrary(number == 1 ? L"guest_module1.dll" : L"guest_module2.dll") {}

    void join() const { symbol<void (*)()>("joinGuest")(); }
    void dismiss(BOOL all = FALSE) const { symbol<void (*)(BOOL)>("dismissGuest")(all); }
    AFX_EXTENSION_MODULE& state() const {
        return *symbol<AFX_EXTENSION_MODULE* (*)()>("guestState")();
    }
};
