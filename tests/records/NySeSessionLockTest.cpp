#include "NyServer/records/NySeSessionLock.h"

#include <gtest/gtest.h>

#include "tests/support/ArchiveBytes.h"

namespace {

NySeSessionLock sessionLock(LONG session, unsigned int state) {
    NySeSessionLock one;
    one.setSessionNumber(session);
    one.setLockState(state);
    return one;
}

std::string fields(NySeSessionLock one) {
    return toHex(stored([&](CArchive& ar) { one.Serialize(ar); }));
}

TEST(NySeSessionLock, StartsAtZero) {
    EXPECT_EQ(0, NySeSessionLock().getSessionNumber());
    EXPECT_EQ(0u, NySeSessionLock().getLockState());
}

TEST(NySeSessionLock, KeepsAndCopiesBothFields) {
    const NySeSessionLock copy(sessionLock(-7, 0xFFFFFFFF));
    EXPECT_EQ(-7, copy.getSessionNumber());
    EXPECT_EQ(0xFFFFFFFFu, copy.getLockState());
}

TEST(NySeSessionLock, TravelsWithItsStateFirst) {
    EXPECT_EQ(hex("18000000 07000000"), fields(sessionLock(7, 0x18)));
    EXPECT_EQ(hex("00000000 00000000"), fields(NySeSessionLock()));
    EXPECT_EQ(hex("FFFFFFFF FEFFFFFF"), fields(sessionLock(-2, 0xFFFFFFFF)));
}

TEST(NySeSessionLock, IsReadBack) {
    NySeSessionLock one;
    Loading loading(fromHex("18000000 07000000"));
    one.Serialize(loading.ar);
    EXPECT_EQ(7, one.getSessionNumber());
    EXPECT_EQ(0x18u, one.getLockState());
}

TEST(NySeSessionLock, KeyOneComparesSessionsWhateverTheirStates) {
    EXPECT_EQ(QoSort::equal, sessionLock(7, 1).vCompareTo(sessionLock(7, 2), 1));
    EXPECT_EQ(QoSort::before, sessionLock(-7, 1).vCompareTo(sessionLock(7, 1), 1));
    EXPECT_EQ(QoSort::after, sessionLock(8, 1).vCompareTo(sessionLock(7, 1), 1));
    EXPECT_EQ(QoSort::noOrder, sessionLock(7, 1).vCompareTo(sessionLock(7, 1), 2));
}

}  // namespace
