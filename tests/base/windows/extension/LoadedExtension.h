// The extension modules that tests load and free.
#pragma once

#include <afxdllx.h>

#include "tests/base/windows/extension/resource.h"
#include "tests/support/LoadedLibrary.h"

class LoadedExtension : public LoadedLibrary {
  public:
    explicit LoadedExtension(int number)
        : LoadedLibrary(number == 1 ? L"extension_module1.dll" : L"extension_module2.dll") {}

    void add() const { symbol<void (*)()>("addModule")(); }
    void remove(BOOL all = FALSE) const { symbol<void (*)(BOOL)>("removeModule")(all); }
    AFX_EXTENSION_MODULE& state() const {
        return *symbol<AFX_EXTENSION_MODULE* (*)()>("moduleState")();
    }
};
