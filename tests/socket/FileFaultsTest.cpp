// Files that cannot be written or are not there.
#include <gtest/gtest.h>

#include "NyServer/socket/CUT_FileDataSource.h"
#include "tests/socket/ProbeClient.h"
#include "tests/socket/WorkerTest.h"
#include "tests/support/ScriptedSource.h"
#include "tests/support/TempFile.h"

namespace {

// A device that takes no byte, where the system has one.
constexpr wchar_t kFullDisk[] = L"\\\\?\\unix\\dev\\full";

template <class Fixture>
class WithAFullDisk : public Fixture {
  protected:
    void SetUp() override {
        Fixture::SetUp();
        if (CUT_FileDataSource(kFullDisk, 4096).Open(OM_WRITE) != 0)
            GTEST_SKIP() << "this system has no device that is always full";
    }
};

using FullDisk = WithAFullDisk<testing::Test>;

TEST_F(FullDisk, TakesNoByteOfADataSource) {
    CUT_FileDataSource source(kFullDisk, 4096);
    for (const OpenMsgType type : {OM_WRITE, OM_APPEND}) {
        ASSERT_EQ(source.Open(type), 0);
        EXPECT_EQ(source.Write("abc", 3), -1);
        EXPECT_EQ(source.WriteLine("abc"), -1);
        EXPECT_EQ(source.Close(), 0);
    }
}

TEST_F(FullDisk, EndsAClientsReceiveAndLeavesTheConnection) {
    peers::Peer peer(peers::sending(patternOf(600)));
    ProbeClient client;
    ASSERT_EQ(client.connectTo(peer.port()), UTE_SUCCESS);
    EXPECT_EQ(client.ReceiveToFile(kFullDisk, OM_WRITE, 10, 0), UTE_DS_WRITE_FAILED);
    EXPECT_EQ(client.codes.back(), UTE_DS_WRITE_FAILED);
    EXPECT_EQ(client.receivedTotals, std::vector<long>{});
    EXPECT_TRUE(client.IsConnected());
}

TEST(MissingFolder, EndsAClientsReceiveBeforeAnythingIsRead) {
    const TempFolder folder;
    peers::Peer peer(peers::sending("abc"));
    ProbeClient client;
    ASSERT_EQ(client.connectTo(peer.port()), UTE_SUCCESS);
    const std::wstring path = folder.path(L"missing\\file");
    EXPECT_EQ(client.ReceiveToFile(path.c_str(), OM_WRITE, 10, 0), UTE_DS_OPEN_FAILED);
    char rest[3];
    EXPECT_EQ(client.CUT_WSClient::Receive(rest, sizeof rest, 10), 3);
}

using FullDiskWorker = WithAFullDisk<Worker>;

TEST_F(FullDiskWorker, EndsAWorkersReceiveAndLeavesTheConnection) {
    peerSends(patternOf(600));
    long received = 77;
    EXPECT_EQ(m_worker.ReceiveToFile(kFullDisk, OM_WRITE, received, 10), UTE_DS_WRITE_FAILED);
    EXPECT_EQ(received, 0);
    EXPECT_EQ(m_worker.codes.back(), UTE_DS_WRITE_FAILED);
    char rest[600];
    EXPECT_EQ(m_worker.Receive(rest, sizeof rest, 10), 600 - 256);
}

}  // namespace
