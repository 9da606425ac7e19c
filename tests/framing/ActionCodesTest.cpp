#include <gtest/gtest.h>

#include <cstring>
#include <iterator>

#include "NyServer/framing/NySeActions.h"
#include "tests/support/Golden.h"

namespace {

int codeOf(const Golden& request) {
    int code = 0;
    std::memcpy(&code, request.bytes.data(), sizeof code);
    return code;
}

TEST(ActionCodes, OfRequestsAreThoseOfTheGoldenBytes) {
    for (const NySe::RequestKind& request : NySe::kRequests)
        EXPECT_EQ(codeOf(golden(std::string("request-") + request.name)), request.action);
    EXPECT_EQ(goldenNamed("request-").size(), std::size(NySe::kRequests));
}

TEST(ActionCodes, OfNotificationsAre50To58) {
    EXPECT_EQ(50, NySe::actionFirstNotification);
    EXPECT_EQ(58, NySe::actionLastNotification);
    int number = 50;
    for (const NySe::NotificationKind& kind : NySe::kNotifications) {
        EXPECT_EQ(number < 56, kind.changesTables) << number;
        EXPECT_EQ(number++, kind.action);
    }
    EXPECT_EQ(59, number);
}

TEST(ActionCodes, OfNoMessageAndTheLastThatIsSentKeepTheirNumbers) {
    EXPECT_EQ(-1, NySe::noAction);
    EXPECT_EQ(701, NySe::lastSendableAction);
}

TEST(ActionCodes, ThatAreNoNotificationHaveNoWords) {
    for (const int action : {-1, 1, 49, 59}) {
        EXPECT_STREQ("unknown", NySe::notificationKind(action).words);
        EXPECT_FALSE(NySe::notificationKind(action).changesTables);
    }
}

TEST(ActionCodes, TakeFourBytesAsSchemasDo) {
    EXPECT_EQ(4u, sizeof(NySe::ActionType));
    EXPECT_EQ(4u, sizeof(NySe::SchemaType));
    EXPECT_EQ(0u, static_cast<unsigned>(NySe::noSchema));
    EXPECT_EQ(2015u, static_cast<unsigned>(NySe::schema2015));
}

TEST(ActionCodes, AliveReplyIs512) {
    EXPECT_EQ(512, NySe::kAliveAnswer);
}

}  // namespace
