#include <sddl.h>

#include "tests/listener/ListenerTest.h"
#include "tests/listener/windows/LimitSetting.h"

namespace {

class PostMessageLimit : public testing::Test {
  protected:
    long limit() { return m_listener.postMessageLimit(); }
    long limitFor(DWORD value) {
        m_setting.set(value);
        ProbeListener listener;
        return listener.postMessageLimit();
    }

    LimitSetting m_setting;
    ProbeListener m_listener;
};

TEST_F(PostMessageLimit, IsNineTenthsOfTheSystemsRoundedDown) {
    // As unsigned numbers.
    const std::pair<DWORD, long> rows[] = {
        {10000, 9000}, {3600, 3240}, {10009, 9008}, {19, 17},
        {2, 1},        {1, 0},       {0, 0},        {2386092941, 2147483646}};
    for (const auto& [setting, limit] : rows) EXPECT_EQ(limitFor(setting), limit) << setting;
    EXPECT_LT(limitFor(0xFFFFFFFF), 1);
}

TEST_F(PostMessageLimit, IsThatOf3600WithoutAKeyOrAValue) {
    EXPECT_EQ(std::make_unique<ProbeListener>()->postMessageLimit(), 3240);
    m_setting.makeEmptyKey();
    EXPECT_EQ(limit(), 3240);
}

TEST_F(PostMessageLimit, IsThatOf3600WithAValueOfMoreThanFourBytes) {
    m_setting.set(REG_SZ, L"10000", 12);
    EXPECT_EQ(limit(), 3240);
}

TEST_F(PostMessageLimit, UsesAShortValueAndOneOfAnyTypeUnchanged) {
    for (const DWORD size : {4u, 2u}) {
        m_setting.set(REG_BINARY, "\x10\x27\0", size);
        EXPECT_EQ(std::make_unique<ProbeListener>()->postMessageLimit(), 9000);
    }
}

// Allows nobody any other access to the settings, as an administrator may.
class ProtectedSettings {
  public:
    explicit ProtectedSettings(const wchar_t* access) {
        ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, LimitSetting::kPath, 0, READ_CONTROL | WRITE_DAC,
                        &m_key);
        protect(access);
    }
    ~ProtectedSettings() {
        protect(L"D:P(A;;KA;;;WD)");
        ::RegCloseKey(m_key);
    }
    ProtectedSettings(const ProtectedSettings&) = delete;
    ProtectedSettings& operator=(const ProtectedSettings&) = delete;

  private:
    void protect(const wchar_t* access) {
        PSECURITY_DESCRIPTOR description = nullptr;
        ::ConvertStringSecurityDescriptorToSecurityDescriptorW(access, SDDL_REVISION_1,
                                                               &description, nullptr);
        EXPECT_EQ(::RegSetKeySecurity(m_key, DACL_SECURITY_INFORMATION, description), 0);
        ::LocalFree(description);
    }

    HKEY m_key = nullptr;
};

// No less either: what else is missing counts as a missing value.
TEST_F(PostMessageLimit, NeedsToReadTheSettingsAndNoMore) {
    m_setting.set(10000);
    {
        const ProtectedSettings onlyTheValues(L"D:P(A;;CC;;;WD)");
        EXPECT_EQ(std::make_unique<ProbeListener>()->postMessageLimit(), 3240);
    }
    const ProtectedSettings onlyReading(L"D:P(A;;KR;;;WD)");
    EXPECT_EQ(limit(), 9000);
}

TEST_F(PostMessageLimit, IsReadOnce) {
    m_setting.set(10000);
    EXPECT_EQ(limit(), 9000);
    m_setting.set(3600);
    EXPECT_EQ(limit(), 9000);
}

TEST_F(PostMessageLimit, IsReadAgainUntilItIsAboveZero) {
    for (const DWORD none : {0u, 1u, 0xFFFFFFFFu}) {
        m_setting.set(none);
        EXPECT_LT(limit(), 1);
    }
    m_setting.set(2);
    EXPECT_EQ(limit(), 1);
    m_setting.set(10000);
    EXPECT_EQ(limit(), 1);
}

}  // namespace
