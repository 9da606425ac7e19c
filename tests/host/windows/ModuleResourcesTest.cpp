// The module's resources beside those of other modules; this program loads the module, and has
// texts with the module's numbers.
#include "NyServer/host/windows/ModuleResources.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/CStringPrinter.h"
#include "tests/support/LoadedLibrary.h"
#include "tests/support/SlotOrder.h"

// After the Windows headers, which it needs.
#include <winver.h>

namespace {

const LoadedLibrary module(L"NyServerDll.dll");

class ModuleResources : public testing::Test {
  protected:
    ~ModuleResources() override { AfxSetResourceHandle(nullptr); }

    static CString searchedText(UINT id) {
        CString text;
        text.LoadString(id);
        return text;
    }

    static std::wstring loadersText(UINT id) {
        wchar_t text[200] = L"";
        ::LoadStringW(::GetModuleHandleW(L"NyServerDll.dll"), id, text, 200);
        return text;
    }

    HINSTANCE m_module = ::GetModuleHandleW(L"NyServerDll.dll");
    HINSTANCE m_program = ::GetModuleHandleW(nullptr);
};

TEST_F(ModuleResources, AreFoundByTheLoader) {
    EXPECT_EQ(loadersText(IDS_NYSERVER_NAME), L"NyServer");
    EXPECT_EQ(loadersText(IDS_NYSERVER_DESCRIPTION),
              L"Shared library of a collaborative design server");
    EXPECT_EQ(loadersText(IDS_NYSERVER_VERSION), L"Version %s");
}

TEST_F(ModuleResources, HaveTheirTextsWhateverModulesAreCurrent) {
    EXPECT_EQ(searchedText(IDS_NYSERVER_NAME), L"the program's name");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(moduleresources::loadString(IDS_NYSERVER_NAME), L"NyServer");
        EXPECT_EQ(NyServerDllLoadString(IDS_NYSERVER_VERSION).loadString(), L"Version %s");
        AfxSetResourceHandle(::GetModuleHandleW(L"NyBaseDll.dll"));
    }
}

TEST_F(ModuleResources, AreSearchedAfterTheCurrentModulesAndHaveNoTextOfThem) {
    EXPECT_EQ(searchedText(42000), L"of the program alone");
    EXPECT_EQ(moduleresources::loadString(42000), CString());
    EXPECT_EQ(searchedText(IDS_NYSERVER_DESCRIPTION),
              L"Shared library of a collaborative design server");
}

TEST_F(ModuleResources, AreCurrentWhileASwitchExists) {
    {
        NyServerDllSwitchResource toModule;
        EXPECT_EQ(AfxGetResourceHandle(), m_module);
        EXPECT_EQ(searchedText(IDS_NYSERVER_NAME), L"NyServer");
        AfxSetResourceHandle(::GetModuleHandleW(L"NyBaseDll.dll"));
        toModule.setModuleResourceHandle();
        EXPECT_EQ(AfxGetResourceHandle(), m_module) << "made current again";
    }
    EXPECT_EQ(AfxGetResourceHandle(), m_program);
    EXPECT_EQ(searchedText(IDS_NYSERVER_NAME), L"the program's name");
}

TEST_F(ModuleResources, AreReplacedByThePreviousOnesAfterASwitch) {
    const HINSTANCE other = ::GetModuleHandleW(L"NyBaseDll.dll");
    AfxSetResourceHandle(other);
    {
        const NyServerDllSwitchResource outer;
        { const NyServerDllSwitchResource inner; }
        EXPECT_EQ(AfxGetResourceHandle(), m_module);
    }
    EXPECT_EQ(AfxGetResourceHandle(), other);
}

TEST_F(ModuleResources, SwitchKeepsItsSlotsAndItsSize) {
    EXPECT_EQ(slotOf(&NyServerDllSwitchResource::setModuleResourceHandle), 2u);
    EXPECT_EQ(sizeof(NyServerDllSwitchResource), sizeof(QoUiSwitchResource));
}

class Version : public testing::Test {
  protected:
    Version() {
        wchar_t path[MAX_PATH] = L"";
        ::GetModuleFileNameW(::GetModuleHandleW(L"NyServerDll.dll"), path, MAX_PATH);
        m_block.resize(::GetFileVersionInfoSizeW(path, nullptr));
        ::GetFileVersionInfoW(path, 0, static_cast<DWORD>(m_block.size()), m_block.data());
    }

    std::wstring value(const std::wstring& name) {
        void* text = nullptr;
        UINT length = 0;
        const std::wstring path = L"\\StringFileInfo\\040904B0\\" + name;
        if (!::VerQueryValueW(m_block.data(), path.c_str(), &text, &length)) return {};
        return static_cast<const wchar_t*>(text);
    }

    std::vector<BYTE> m_block;
};

TEST_F(Version, OfTheFileIsTheProjects) {
    void* found = nullptr;
    UINT length = 0;
    ASSERT_FALSE(m_block.empty());
    ASSERT_TRUE(::VerQueryValueW(m_block.data(), L"\\", &found, &length));
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(found);
    const std::vector<int> version = {HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS),
                                      HIWORD(fixed.dwFileVersionLS), LOWORD(fixed.dwFileVersionLS)};
    EXPECT_EQ(version, (std::vector<int>{NY_VERSION_NUMBERS, 0}));
    EXPECT_EQ(fixed.dwProductVersionMS, fixed.dwFileVersionMS);
    EXPECT_EQ(fixed.dwProductVersionLS, fixed.dwFileVersionLS);
    EXPECT_EQ(fixed.dwFileType, static_cast<DWORD>(VFT_DLL));
}

TEST_F(Version, TextsDescribeTheFile) {
    EXPECT_EQ(value(L"FileVersion"), NY_VERSION);
    EXPECT_EQ(value(L"ProductVersion"), NY_VERSION);
    EXPECT_EQ(value(L"ProductName"), L"NyServer");
    EXPECT_EQ(value(L"InternalName"), L"NyServerDll");
    EXPECT_EQ(value(L"OriginalFilename"), L"NyServerDll.dll");
    EXPECT_EQ(value(L"FileDescription"), L"Shared library of a collaborative design server");
}

}  // namespace
