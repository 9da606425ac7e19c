#include <gtest/gtest.h>

#include "tests/listener/LimitSetting.h"
#include "tests/listener/ListenerTest.h"

namespace {

long limitOf(ProbeListener& listener) {
    const ProbeListener::ThreadListLock lock(listener);
    return listener.getPostMessageLimit();
}

class PostMessageLimit : public testing::Test {
  protected:
    long limit() { return limitOf(m_listener); }
    long limitFor(DWORD value) {
        m_setting.set(value);
        ProbeListener listener;
        return limitOf(listener);
    }

    LimitSetting m_setting;
    ProbeListener m_listener;
};

TEST_F(PostMessageLimit, IsNineTenthsOfTheSystemsRoundedDown) {
    EXPECT_EQ(limitFor(10000), 9000);
    EXPECT_EQ(limitFor(3600), 3240);
    EXPECT_EQ(limitFor(10009), 9008);
    EXPECT_EQ(limitFor(19), 17);
    EXPECT_EQ(limitFor(2), 1);
    EXPECT_EQ(limitFor(1), 0);
    EXPECT_EQ(limitFor(0), 0);
}

TEST_F(PostMessageLimit, TakesTheSystemsAsUnsigned) {
    EXPECT_EQ(limitFor(2386092941), 2147483646);
    EXPECT_LT(limitFor(0xFFFFFFFF), 1);
}

TEST_F(PostMessageLimit, IsThatOf3600WithoutAValue) {
    m_setting.makeEmptyKey();
    EXPECT_EQ(limit(), 3240);
}

TEST_F(PostMessageLimit, IsThatOf3600WithoutAKey) {
    EXPECT_EQ(limit(), 3240);
}

TEST_F(PostMessageLimit, IsThatOf3600WithAValueOfMoreThanFourBytes) {
    m_setting.set(REG_SZ, L"10000", 12);
    EXPECT_EQ(limit(), 3240);
}

TEST_F(PostMessageLimit, TakesAValueOfAnyType) {
    m_setting.set(REG_BINARY, "\x10\x27\0", 4);
    EXPECT_EQ(limit(), 9000);
}

TEST_F(PostMessageLimit, TakesAShortValueAsItStands) {
    m_setting.set(REG_BINARY, "\x10\x27", 2);
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

TEST(PostMessageLimitOfTheMachine, IsAboveZero) {
    ProbeListener listener;
    EXPECT_GT(limitOf(listener), 0);
}

}  // namespace
