// Most errors of a peek or a select cannot be provoked at will, so the tables of what each means
// are checked by themselves.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "NyServer/socket/SocketCalls.h"

namespace {

using socketcalls::PeekError;

TEST(PeekErrorTest, SaysWhatAnErrorMeansAndNothingForAnyOtherNumber) {
    std::map<int, PeekError> meanings{
        {10035, PeekError::wouldBlock}, {10036, PeekError::inProgress}, {10054, PeekError::reset}};
    for (const int error :
         {10004, 10014, 10022, 10038, 10040, 10045, 10050, 10052, 10053, 10056, 10058, 10060})
        meanings[error] = PeekError::dead;
    for (int error = 0; error < 12000; ++error) {
        const PeekError meaning = meanings.contains(error) ? meanings[error] : PeekError::other;
        EXPECT_EQ(socketcalls::classifyPeekError(error), meaning) << error;
    }
}

// Of a failed select, not of a peek: in some stacks one never fails as "not initialised".
TEST(SelectError, SaysWhetherThereIsASocket) {
    const std::set<int> none{10038, 10050, 10093};
    for (int error = 0; error < 12000; ++error)
        EXPECT_EQ(socketcalls::isNoSocket(error), none.contains(error)) << error;
}

}  // namespace
