#include <gtest/gtest.h>

#include "NyServer/framing/NySeActions.h"

namespace {

struct Code {
    int number;
    NySe::ActionType action;
};

TEST(ActionCodes, KeepTheirNumbers) {
    const Code codes[] = {{-1, NySe::noAction},
                          {1, NySe::actionIsAlive},
                          {2, NySe::actionGetConnection},
                          {3, NySe::actionOpenConnection},
                          {4, NySe::actionCloseConnection},
                          {6, NySe::actionIsOpenConnectionBy},
                          {10, NySe::actionGetLock},
                          {11, NySe::actionLock},
                          {12, NySe::actionUnLock},
                          {13, NySe::actionIsLockBy},
                          {50, NySe::actionNotification50},
                          {51, NySe::actionNotification51},
                          {52, NySe::actionNotification52},
                          {53, NySe::actionNotification53},
                          {54, NySe::actionNotification54},
                          {55, NySe::actionNotification55},
                          {56, NySe::actionNotification56},
                          {57, NySe::actionNotification57},
                          {58, NySe::actionNotification58},
                          {50, NySe::actionFirstNotification},
                          {58, NySe::actionLastNotification},
                          {70, NySe::actionGetAllUser},
                          {71, NySe::actionGetAnotherPort},
                          {72, NySe::actionSendConnectionData},
                          {73, NySe::actionSendUserData},
                          {74, NySe::actionSendAllUserData},
                          {75, NySe::actionUpdateUserName},
                          {77, NySe::actionShutDownServer},
                          {84, NySe::actionGetCurrentTime},
                          {89, NySe::actionVerifyCoherancy},
                          {90, NySe::actionGetMachineIdentifiant},
                          {95, NySe::actionGetEventListFromEventViewer},
                          {96, NySe::actionGetPortClient},
                          {97, NySe::actionInitializeSchema},
                          {106, NySe::actionGetVersion},
                          {666, NySe::actionDisconnect},
                          {701, NySe::lastSendableAction}};
    for (const Code& code : codes) EXPECT_EQ(code.number, code.action);
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
