// How the notifications of a listener reach the thread that waits for them.
#include "apps/nyctl/NotificationReceiver.h"

#include <gtest/gtest.h>

#include "NyServer/framing/NySeMemFile.h"
#include "NyServer/host/NyServerModule.h"
#include "tests/support/Gate.h"

using apps::nyctl::NotificationReceiver;

namespace {

class Receiver : public ::testing::Test {
  protected:
    void post(NySe::ActionType action) {
        NySeMemFile message;
        message.startWriteAction(action, NySe::schema2015);
        message.writeInteger(7);
        message.stopWriting();
        listener.postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, message);
    }
    std::unique_ptr<NotificationReceiver> makeReceiver() {
        return std::make_unique<NotificationReceiver>(
            listener, [this](NySe::ActionType action, CMemFile& payload) {
                received.emplace_back(action, payload.GetLength());
            });
    }
    // It is counted as consumed after `receive` has returned.
    bool isNoneWaiting() {
        return eventually([this] { return listener.getPostMsgCount() == 0; });
    }

    NyServerApp listener;
    std::vector<std::pair<NySe::ActionType, ULONGLONG>> received;
    std::unique_ptr<NotificationReceiver> receiver = makeReceiver();
};

TEST_F(Receiver, ReceivesOneNotificationAtATimeInTheirOrder) {
    post(NySe::notifyLockGranted);
    post(NySe::notifyLockReleased);
    EXPECT_EQ(2, listener.getPostMsgCount());
    EXPECT_TRUE(receiver->receive(60'000));
    EXPECT_EQ(1U, received.size());
    EXPECT_TRUE(receiver->receive(60'000));
    ASSERT_EQ(2U, received.size());
    EXPECT_EQ(std::pair(NySe::notifyLockGranted, ULONGLONG{4}), received[0]);
    EXPECT_EQ(std::pair(NySe::notifyLockReleased, ULONGLONG{4}), received[1]);
    EXPECT_TRUE(isNoneWaiting());
}

TEST_F(Receiver, ReceivesNothingInTime) {
    const ULONGLONG begin = port::milliseconds();
    EXPECT_FALSE(receiver->receive(100));
    EXPECT_GE(port::milliseconds() - begin, 90U);
    EXPECT_TRUE(received.empty());
}

// The second may already be on its way to the receiver.
TEST_F(Receiver, DiscardsWhatIsNotReceivedWhenItIsDestroyed) {
    for (size_t i = 1; i <= 50; ++i) {
        post(NySe::notifyLockGranted);
        post(NySe::notifyLockReleased);
        EXPECT_TRUE(receiver->receive(60'000));
        EXPECT_TRUE(eventually([this] { return listener.getPostMsgCount() == 1; }));
        receiver.reset();
        EXPECT_EQ(i, received.size());
        EXPECT_TRUE(isNoneWaiting());
        post(NySe::notifyLockGranted);
        EXPECT_TRUE(isNoneWaiting());
        receiver = makeReceiver();
    }
}

}  // namespace
