// Most errors of a peek cannot be provoked at will, so the table of what each means is checked by
// itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "NyServer/socket/SocketCalls.h"

namespace {

using socketcalls::classifyPeekError;
using socketcalls::PeekError;

constexpr std::array kDead = {10004, 10014, 10022, 10038, 10040, 10045,
                              10050, 10052, 10053, 10056, 10058, 10060};

TEST(PeekErrorTest, TellsABrokenConnection) {
    for (int error : kDead) EXPECT_EQ(classifyPeekError(error), PeekError::dead) << error;
}

TEST(PeekErrorTest, TellsWhatTheOthersMean) {
    EXPECT_EQ(classifyPeekError(10035), PeekError::wouldBlock);
    EXPECT_EQ(classifyPeekError(10036), PeekError::inProgress);
    EXPECT_EQ(classifyPeekError(10054), PeekError::reset);
}

TEST(PeekErrorTest, SaysNothingForAnyOtherNumber) {
    for (int error = 0; error < 12000; ++error) {
        if (error == 10035 || error == 10036 || error == 10054) continue;
        if (std::find(kDead.begin(), kDead.end(), error) != kDead.end()) continue;
        EXPECT_EQ(classifyPeekError(error), PeekError::other) << error;
    }
}

// Of a failed select, not of a peek: in some stacks one never fails as "not initialised".
TEST(SelectError, SaysWhetherThereIsASocket) {
    for (int error : {10038, 10050, 10093}) EXPECT_TRUE(socketcalls::isNoSocket(error)) << error;
    for (int error : {0, 10004, 10014, 10022, 10036, 10054})
        EXPECT_FALSE(socketcalls::isNoSocket(error)) << error;
}

}  // namespace
