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

TEST(SocketCodes, AreExportedAndImportedAsData) {
    EXPECT_EQ(exportedInt("NY_UTE_SUCCESS"), 0);
    EXPECT_EQ(exportedInt("NY_UTE_ERROR"), 1);
    EXPECT_EQ(exportedInt("NY_UTE_SOCK_BIND_FAILED"), 18);
    EXPECT_EQ(NY_UTE_SUCCESS, UTE_SUCCESS);
    EXPECT_EQ(NY_UTE_ERROR, UTE_ERROR);
    EXPECT_EQ(NY_UTE_SOCK_BIND_FAILED, UTE_SOCK_BIND_FAILED);
}

TEST(SocketCodes, AreReadOnly) {
    MEMORY_BASIC_INFORMATION page{};
    ASSERT_NE(::VirtualQuery(&NY_UTE_SOCK_BIND_FAILED, &page, sizeof page), 0u);
    EXPECT_EQ(page.Protect, static_cast<DWORD>(PAGE_READONLY));
}

TEST(SocketCodes, KeepTheirNumbers) {
    EXPECT_EQ(UTE_SUCCESS, 0);
    EXPECT_EQ(UTE_ERROR, 1);
    EXPECT_EQ(UTE_WORKER_SEND_FAILED, 4);
    EXPECT_EQ(UTE_CONNECT_TIMEOUT, 5);
    EXPECT_EQ(UTE_NAME_LOOKUP_FAILED, 7);
    EXPECT_EQ(UTE_SOCK_NOT_OPEN, 15);
    EXPECT_EQ(UTE_SOCK_ALREADY_OPEN, 16);
    EXPECT_EQ(UTE_SOCK_CREATE_FAILED, 17);
    EXPECT_EQ(UTE_SOCK_BIND_FAILED, 18);
    EXPECT_EQ(UTE_SOCK_CONNECT_FAILED, 19);
    EXPECT_EQ(UTE_SOCK_TIMEOUT, 20);
    EXPECT_EQ(UTE_SOCK_RECEIVE_ERROR, 21);
    EXPECT_EQ(UTE_SOCK_SEND_ERROR, 22);
    EXPECT_EQ(UTE_SOCK_LISTEN_ERROR, 23);
    EXPECT_EQ(UTE_INVALID_OPEN_TYPE, 26);
    EXPECT_EQ(UTE_BUFFER_TOO_SHORT, 35);
    EXPECT_EQ(UTE_DS_OPEN_FAILED, 79);
    EXPECT_EQ(UTE_DS_WRITE_FAILED, 81);
    EXPECT_EQ(UTE_ABORTED, 90);
    EXPECT_EQ(UTE_CONNECT_RESOLVE_FAILED, 92);
}

}  // namespace
