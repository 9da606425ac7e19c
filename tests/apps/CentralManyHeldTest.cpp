// A client that held much leaves: nobody waits for it, and nobody misses a word of it.
#include <thread>

#include "tests/apps/CentralTest.h"
#include "tests/apps/CollectingListener.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::duration_cast;
using std::chrono::milliseconds;

template <class Action>
long millisecondsOf(Action action) {
    const auto start = Clock::now();
    action();
    return static_cast<long>(duration_cast<milliseconds>(Clock::now() - start).count());
}

class CountingNotifier : public Notifier {
  public:
    void listen(LONG, const sockaddr_in&) override {}
    void forget(LONG) override {}
    void notify(const std::vector<LONG>&, NotificationBytes) override { ++count; }

    int count = 0;
};

constexpr int kManyLocks = 40'000;
// In ms, on a busy machine; a search for each takes longer than this on an idle one.
constexpr long kWhileNobodyWaits = 10'000;

TEST(CentralManyHeld, TheLocksOfOneSessionAreReleasedWhileNobodyWaits) {
    CountingNotifier notifier;
    TableLimits limits;
    limits.locksPerSession = limits.locksInAll = kManyLocks;
    CentralTables tables({101}, notifier, limits);
    const LONG watching = tables.beginSession(0);
    ASSERT_TRUE(tables.registerUser(NySeUser(), watching));
    const LONG leaving = tables.beginSession(0);
    const LONG staying = tables.beginSession(0);
    const long granted = millisecondsOf([&] {
        for (int i = 0; i < kManyLocks; ++i) {
            const CString name(std::to_string(i * 7919 % kManyLocks).c_str());
            EXPECT_TRUE(tables.lock(leaving, name, 0));
            if (i % 100 == 0) {
                EXPECT_TRUE(tables.lock(staying, name, 0));
            }
        }
    });
    notifier.count = 0;

    long longestWait = 0;
    std::atomic<bool> hasLeft = false;
    std::thread other([&] {
        while (!hasLeft)
            longestWait = std::max(longestWait, millisecondsOf([&] { tables.users(); }));
    });
    const long taken = millisecondsOf([&] { tables.endSession(leaving); });
    hasLeft = true;
    other.join();

    std::printf(
        "%d locks granted in %ld ms, released in %ld ms; another call took %ld ms at most\n",
        kManyLocks, granted, taken, longestWait);
    EXPECT_LT(taken, kWhileNobodyWaits);
    EXPECT_LT(longestWait, kWhileNobodyWaits);
    EXPECT_EQ(kManyLocks, notifier.count);
    EXPECT_TRUE(tables.faults().empty());
    tables.endSession(staying);
    EXPECT_EQ(kManyLocks + kManyLocks / 100, notifier.count);
}

// Made before the server and gone after it.
struct BobsListener {
    CollectingListener ofBob;
};

class CentralManyHeldOverSockets : protected BobsListener, public CentralTest {
  protected:
    CentralManyHeldOverSockets() : CentralTest(withPorts({ofBob.port()})) {}

    void SetUp() override {
        CentralTest::SetUp();
        join(bobsClient, "Bob");
        connect(client);
    }

    static CString longName(size_t number) {
        const std::string digits = std::to_string(number);
        return CString((digits + std::string(limits().longestText - digits.size(), 'x')).c_str());
    }
    static TableLimits limits() { return {}; }

    // Takes all that one client may have. How many bytes that is worth to a listener.
    void takeAll() {
        for (size_t i = 0; i < limits().locksPerSession; ++i)
            ASSERT_TRUE(client.lock(longName(i), 0));
        EXPECT_FALSE(client.lock("one more", 0));
        for (size_t i = 0; i < limits().opensPerSession; ++i)
            ASSERT_GE(client.openConnection(longName(i)), 0);
        EXPECT_EQ(-1, client.openConnection("one more"));
    }

    // How many notifications of each number the bytes hold.
    static std::map<LONG, size_t> counted(const std::string& bytes) {
        std::map<LONG, size_t> counts;
        LONG header[2] = {};
        for (size_t at = 0; at + sizeof header <= bytes.size();
             at += sizeof header + static_cast<size_t>(header[1])) {
            std::memcpy(header, bytes.data() + at, sizeof header);
            ++counts[header[0]];
        }
        return counts;
    }

    size_t toldToBob(LONG number) { return counted(ofBob.received())[number]; }

    NySeClientApp bobsClient;
};

TEST_F(CentralManyHeldOverSockets, AHealthyListenerHearsOfAllThatOneClientLeaves) {
    takeAll();
    ASSERT_TRUE(eventually(
        [this] { return toldToBob(notifyConnectionOpened) == limits().opensPerSession; }));
    client.disconnect();
    const long answered = millisecondsOf([this] { EXPECT_EQ(1u, userNames(bobsClient).size()); });
    EXPECT_LT(answered, 10'000);
    EXPECT_TRUE(eventually(
        [this] { return toldToBob(notifyConnectionClosed) == limits().opensPerSession; }));
    EXPECT_EQ(limits().locksPerSession, toldToBob(notifyLockReleased));
    EXPECT_EQ(limits().locksPerSession, toldToBob(notifyLockGranted));
    EXPECT_EQ(0u, server.pusher().dropped());
    expectNothingHeld(bobsClient);
}

}  // namespace
