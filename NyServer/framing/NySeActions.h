// The action codes and schema numbers of the wire. They are the protocol: do not change a number,
// never reuse one.
#pragma once

namespace NySe {

// What a message asks for. Requests go from a client to the central server; notifications from the
// central server to the clients' listeners.
enum ActionType : int {
    noAction = -1,

    actionIsAlive = 1,  // also the central server's probe of a listener
    actionGetConnection = 2,
    actionOpenConnection = 3,
    actionCloseConnection = 4,
    actionIsOpenConnectionBy = 6,

    actionGetLock = 10,
    actionLock = 11,
    actionUnLock = 12,
    actionIsLockBy = 13,

    actionNotification50 = 50,
    actionNotification51 = 51,
    actionNotification52 = 52,
    actionNotification53 = 53,
    actionNotification54 = 54,
    actionNotification55 = 55,
    actionNotification56 = 56,
    actionNotification57 = 57,
    actionNotification58 = 58,
    actionFirstNotification = actionNotification50,
    actionLastNotification = actionNotification58,

    actionGetAllUser = 70,
    actionGetAnotherPort = 71,
    actionSendConnectionData = 72,
    actionSendUserData = 73,
    actionSendAllUserData = 74,
    actionUpdateUserName = 75,
    actionShutDownServer = 77,

    actionGetCurrentTime = 84,
    actionVerifyCoherancy = 89,
    actionGetMachineIdentifiant = 90,
    actionGetEventListFromEventViewer = 95,
    actionGetPortClient = 96,
    actionInitializeSchema = 97,

    actionGetVersion = 106,  // travels bare: 4 bytes, no length
    actionDisconnect = 666,  // travels bare: 4 bytes, no length

    lastSendableAction = 701  // a client sends nothing above
};

constexpr bool isNotification(int action) {
    return action >= actionFirstNotification && action <= actionLastNotification;
}

// The form in which records are archived.
enum SchemaType : unsigned int {
    noSchema = 0,
    schema2015 = 2015  // the current one
};

// The answer of a living server or listener to actionIsAlive.
inline constexpr int kAliveAnswer = 512;

// A message starts with its action (when it has one) and the length of its payload, both signed and
// little-endian.
inline constexpr unsigned int kLengthBytes = 4;
inline constexpr unsigned int kActionHeaderBytes = 4 + kLengthBytes;

}  // namespace NySe
