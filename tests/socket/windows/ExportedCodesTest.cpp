#include <gtest/gtest.h>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

// By name from the module, as a caller without a header does.
int exportedInt(const char* name) {
    const HMODULE module = ::GetModuleHandleW(L"NyServerDll.dll");
    const auto address = reinterpret_cast<const void*>(::GetProcAddress(module, name));
    return address ? *static_cast<const int*>(address) : -1;
}

TEST(ExportedCodes, AreExportedAndImportedAsData) {
    EXPECT_EQ(exportedInt("NY_UTE_SUCCESS"), 0);
    EXPECT_EQ(exportedInt("NY_UTE_ERROR"), 1);
    EXPECT_EQ(exportedInt("NY_UTE_SOCK_BIND_FAILED"), 18);
    EXPECT_EQ(NY_UTE_SUCCESS, UTE_SUCCESS);
    EXPECT_EQ(NY_UTE_ERROR, UTE_ERROR);
    EXPECT_EQ(NY_UTE_SOCK_BIND_FAILED, UTE_SOCK_BIND_FAILED);
}

TEST(ExportedCodes, AreReadOnly) {
    MEMORY_BASIC_INFORMATION page{};
    ASSERT_NE(::VirtualQuery(&NY_UTE_SOCK_BIND_FAILED, &page, sizeof page), 0u);
    EXPECT_EQ(page.Protect, static_cast<DWORD>(PAGE_READONLY));
}

}  // namespace
