#include <gtest/gtest.h>

#include "NyServer/framing/NySeActions.h"

namespace {

// Those of requests are in their golden bytes.
TEST(ActionCodes, KeepTheirNumbers) {
    const int notifications[] = {
        NySe::actionNotification50, NySe::actionNotification51, NySe::actionNotification52,
        NySe::actionNotification53, NySe::actionNotification54, NySe::actionNotification55,
        NySe::actionNotification56, NySe::actionNotification57, NySe::actionNotification58};
    for (int number = NySe::actionFirstNotification; const int action : notifications) {
        EXPECT_EQ(number++, action);
    }
    EXPECT_EQ(50, NySe::actionFirstNotification);
    EXPECT_EQ(58, NySe::actionLastNotification);
    EXPECT_EQ(-1, NySe::noAction);
    EXPECT_EQ(701, NySe::lastSendableAction);
}

TEST(ActionCodes, TravelInFourBytesAsSchemasDo) {
    EXPECT_EQ(4u, sizeof(NySe::ActionType));
    EXPECT_EQ(4u, sizeof(NySe::SchemaType));
    EXPECT_EQ(0u, static_cast<unsigned>(NySe::noSchema));
    EXPECT_EQ(2015u, static_cast<unsigned>(NySe::schema2015));
}

TEST(ActionCodes, LivingAnswerIs512) {
    EXPECT_EQ(512, NySe::kAliveAnswer);
}

}  // namespace
