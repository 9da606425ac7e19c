#include <QoWaitCursor.h>

#include <gtest/gtest.h>

namespace {

class WaitCursor : public ::testing::Test {
  protected:
    ~WaitCursor() override { ::SetCursor(nullptr); }

    const HCURSOR m_wait = ::LoadCursorW(nullptr, IDC_WAIT);
    const HCURSOR m_cross = ::LoadCursorW(nullptr, IDC_CROSS);
};

TEST_F(WaitCursor, IsShownAsLongAsItLivesAndThenTheOneBefore) {
    ::SetCursor(m_cross);
    {
        const QoWaitCursor waiting;
        EXPECT_EQ(m_wait, ::GetCursor());
    }
    EXPECT_EQ(m_cross, ::GetCursor());
}

TEST_F(WaitCursor, MayBeNested) {
    ::SetCursor(m_cross);
    {
        const QoWaitCursor outer;
        { const QoWaitCursor inner; }
        EXPECT_EQ(m_wait, ::GetCursor());
    }
    EXPECT_EQ(m_cross, ::GetCursor());
}

TEST_F(WaitCursor, LeavesNoCursorWhereThereWasNone) {
    ::SetCursor(nullptr);
    { const QoWaitCursor waiting; }
    EXPECT_EQ(nullptr, ::GetCursor());
}

}  // namespace
