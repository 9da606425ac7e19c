#include "NyServer/socket/SocketCalls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include "NyServer/socket/SocketCodes.h"
#include "tests/socket/LocalConnection.h"
#include "tests/support/ScriptedSource.h"

namespace {

// Most errors of a peek or a select cannot be provoked at will, so the tables of what each means
// are checked by themselves.
using socketcalls::PeekError;

TEST(PeekErrorTest, ClassifiesAnErrorAndNoOtherNumber) {
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
TEST(SelectError, ReportsWhetherThereIsASocket) {
    const std::set<int> none{10038, 10050, 10093};
    for (int error = 0; error < 12000; ++error)
        EXPECT_EQ(socketcalls::isNoSocket(error), none.contains(error)) << error;
}

template <class Count>
constexpr Count sum(Count total, int count) {
    socketcalls::addWrapping(total, count);
    return total;
}

constexpr long kHighest = std::numeric_limits<long>::max();
constexpr long kLowest = std::numeric_limits<long>::min();

// The compiler refuses an addition that overflows.
static_assert(sum(kHighest - 255, 255) == kHighest);
static_assert(sum(kHighest, 256) == kLowest + 255);
static_assert(sum(std::numeric_limits<int>::max(), 1) == std::numeric_limits<int>::min());

TEST(TransferTotal, WrapsAroundAndTheTransferContinues) {
    ScriptedSource target;
    int pieces = 3;
    std::vector<long> totals;
    const socketcalls::ReceiveSteps steps{[] { return true; },
                                          [&](char* buffer, int length) {
                                              std::fill_n(buffer, length, 'x');
                                              return pieces-- > 0 ? length : 0;
                                          },
                                          [&](long bytesSoFar) {
                                              totals.push_back(bytesSoFar);
                                              return true;
                                          }};
    long total = kHighest - 300;
    EXPECT_EQ(socketcalls::receiveIntoSource(target, OM_WRITE, steps, 0, total), UTE_SUCCESS);
    EXPECT_EQ(totals, (std::vector<long>{kHighest - 44, kLowest + 211, kLowest + 467}));
    EXPECT_EQ(total, kLowest + 467);
    EXPECT_EQ(target.content.size(), 768u);
}

static_assert(UTE_SUCCESS == 0 && UTE_ERROR == 1 && UTE_WORKER_SEND_FAILED == 4);
static_assert(UTE_CONNECT_TIMEOUT == 5 && UTE_NAME_LOOKUP_FAILED == 7 && UTE_SOCK_NOT_OPEN == 15);
static_assert(UTE_SOCK_ALREADY_OPEN == 16 && UTE_SOCK_CREATE_FAILED == 17);
static_assert(UTE_SOCK_BIND_FAILED == 18 && UTE_SOCK_CONNECT_FAILED == 19);
static_assert(UTE_SOCK_TIMEOUT == 20 && UTE_SOCK_RECEIVE_ERROR == 21 && UTE_SOCK_SEND_ERROR == 22);
static_assert(UTE_SOCK_LISTEN_ERROR == 23 && UTE_INVALID_OPEN_TYPE == 26);
static_assert(UTE_BUFFER_TOO_SHORT == 35 && UTE_DS_OPEN_FAILED == 79 && UTE_DS_WRITE_FAILED == 81);
static_assert(UTE_ABORTED == 90 && UTE_CONNECT_RESOLVE_FAILED == 92);

bool isOpen(SOCKET socket) {
    return peers::optionOf(socket, SO_TYPE) == SOCK_STREAM;
}

// What every NySe::UniqueHandle does, shown with sockets.
TEST(UniqueSocketTest, ClosesTheHandleThatItHasAndNoOther) {
    const peers::WinsockSession winsock;
    NySe::UniqueSocket first = peers::bindToLoopback();
    NySe::UniqueSocket second = peers::bindToLoopback();
    NySe::UniqueSocket third = peers::bindToLoopback();
    const SOCKET handles[] = {first.get(), second.get(), third.get()};

    NySe::UniqueSocket& same = first;
    first = std::move(same);
    EXPECT_TRUE(isOpen(handles[0])) << "itself assigned";
    first.reset(second.release());
    EXPECT_FALSE(isOpen(handles[0])) << "reset";
    EXPECT_EQ(first.get(), handles[1]);
    EXPECT_FALSE(second);
    first = std::move(third);
    EXPECT_FALSE(isOpen(handles[1])) << "another assigned";
    EXPECT_TRUE(isOpen(handles[2]));
    EXPECT_EQ(third.get(), INVALID_SOCKET);
    { const NySe::UniqueSocket last = std::move(first); }
    EXPECT_FALSE(isOpen(handles[2])) << "destroyed";
    EXPECT_FALSE(first);
}

}  // namespace
