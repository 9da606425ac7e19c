// One test alone in its program, since the module's handle is kept for the life of the process.
#include <gtest/gtest.h>

#include "NyServer/host/windows/ModuleResources.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/LoadedLibrary.h"

namespace {

TEST(ModuleHandle, IsStoredOnceTheModuleIsLoaded) {
    EXPECT_EQ(moduleresources::handle(), nullptr);
    EXPECT_EQ(moduleresources::loadString(IDS_NYSERVER_NAME), CString());
    LoadedLibrary library(L"NyServerDll.dll");
    const HINSTANCE handle = library.handle();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(moduleresources::handle(), handle);
    library.free();
    EXPECT_EQ(moduleresources::handle(), handle);
}

}  // namespace
