#include "tests/client/ClientTest.h"
#include "tests/support/CStringPrinter.h"

namespace {

class ClientLocks : public ClientTest {
  protected:
    bool isLockBy() { return client.isLockBy(_T("part/42"), users); }

    NySeUserPtrArray users;
    const std::string isLockByRequest = goldenWire("request-isLockBy");
};

TEST_F(ClientLocks, AllBitsOfTheShareModeTravel) {
    const std::string request = goldenWire("request-lock");
    const std::string allBits =
        request.substr(0, request.size() - sizeof(LONG)) + wire("FF FF FF FF");
    serveRequest(allBits, wire("01"));
    EXPECT_TRUE(client.lock(_T("part/42"), 0xFFFFFFFF));
    expectRequestsSent();
}

TEST_F(ClientLocks, LockIsFalseWhenTheServerCloses) {
    serveRequest(goldenWire("request-lock"), "", Then::close);
    EXPECT_FALSE(client.lock(_T("part/42"), 0x18));
}

TEST_F(ClientLocks, UnLockIsTrueOnceItIsSent) {
    serveRequest(goldenWire("request-unLock"));
    EXPECT_TRUE(client.unLock(_T("part/42")));
    expectRequestsSent();
}

TEST_F(ClientLocks, UnLockIsFalseWithoutConnection) {
    EXPECT_FALSE(client.unLock(_T("part/42")));
}

TEST_F(ClientLocks, IsLockByZeroReadsNothingMore) {
    expectTakesOnly(isLockByRequest, wire("00"), [this] { EXPECT_FALSE(isLockBy()); });
    EXPECT_EQ(0, users.GetSize());
}

TEST_F(ClientLocks, IsLockByOneReadsTheUsers) {
    expectTakesOnly(isLockByRequest, wire("01") + goldenWire("reply-users"),
                    [this] { EXPECT_TRUE(isLockBy()); });
    ASSERT_EQ(2, users.GetSize());
    EXPECT_EQ(CString("Anna"), users[0]->getStrUserName());
    EXPECT_EQ(CString("bob"), users[1]->getStrUserName());
}

TEST_F(ClientLocks, IsLockByAnyOtherByteIsTrueWithoutUsers) {
    for (const char* status : {"02", "7F", "80", "81", "FF"}) {
        SCOPED_TRACE(status);
        expectTakesOnly(isLockByRequest, wire(status), [this] { EXPECT_TRUE(isLockBy()); });
        EXPECT_EQ(0, users.GetSize());
    }
}

TEST_F(ClientLocks, IsLockByOneIsTrueWithoutAUsefulTable) {
    for (const std::string& reply : messagesOtherThan("reply-users")) {
        SCOPED_TRACE(shown(reply));
        serveRequest(isLockByRequest, wire("01") + reply, Then::close);
        EXPECT_TRUE(isLockBy());
        client.disconnect();
    }
}

TEST_F(ClientLocks, IsLockByIsFalseWithoutAnswer) {
    serveRequest(isLockByRequest, "", Then::close);
    EXPECT_FALSE(isLockBy());
}

TEST_F(ClientLocks, IsLockByIsFalseWithoutConnection) {
    EXPECT_FALSE(isLockBy());
}

TEST_F(ClientLocks, GetLockBringsTheHolders) {
    serveRequest(goldenWire("request-getLock"), goldenWire("reply-locks"));
    NySeLockArray locks;
    client.getLock(locks);
    ASSERT_EQ(2, locks.GetSize());
    EXPECT_EQ(CString("part/42"), locks[0]->getStrLockName());
    ASSERT_EQ(2, locks[0]->getHolders().GetSize());
    EXPECT_EQ(7, locks[0]->getHolders()[1]->getSessionNumber());
    EXPECT_EQ(0x18u, locks[0]->getHolders()[1]->getLockState());
}

}  // namespace
