// The action codes and schema numbers of the wire. They are the protocol: do not change a number,
// never reuse one.
#pragma once

// The requests, sent by a client to the central server: X(enumerator, name, number).
// clang-format off
#define NYSE_REQUESTS(X) \
    X(actionIsAlive, "isAlive", 1)  /* also the central server's probe of a listener */ \
    X(actionGetConnection, "getConnection", 2) \
    X(actionOpenConnection, "openConnection", 3) \
    X(actionCloseConnection, "closeConnection", 4) \
    X(actionIsOpenConnectionBy, "isOpenConnectionBy", 6) \
    X(actionGetLock, "getLock", 10) \
    X(actionLock, "lock", 11) \
    X(actionUnLock, "unLock", 12) \
    X(actionIsLockBy, "isLockBy", 13) \
    X(actionGetAllUser, "getAllUser", 70) \
    X(actionGetAnotherPort, "getAnotherPort", 71) \
    X(actionSendConnectionData, "sendConnectionData", 72) \
    X(actionSendUserData, "sendUserData", 73) \
    X(actionSendAllUserData, "sendAllUserData", 74) \
    X(actionUpdateUserName, "updateUserName", 75) \
    X(actionShutDownServer, "shutDownServer", 77) \
    X(actionGetCurrentTime, "getCurrentTime", 84) \
    X(actionVerifyCoherancy, "verifyCoherancy", 89) \
    X(actionGetMachineIdentifiant, "getMachineIdentifiant", 90) \
    X(actionGetEventListFromEventViewer, "getEventListFromEventViewer", 95) \
    X(actionGetPortClient, "getPortClient", 96) \
    X(actionInitializeSchema, "initializeSchema", 97) \
    X(actionGetVersion, "getVersion", 106)  /* travels bare: 4 bytes, no length */ \
    X(actionDisconnect, "disconnect", 666)  /* travels bare: 4 bytes, no length */

// The notifications, sent by the central server to the clients' listeners: X(number, enumerator,
// words, whether the server's tables have changed, class of the object; null when the application
// chooses it). docs/central-server.md says who gets which and when.
#define NYSE_NOTIFICATIONS(X) \
    X(50, notifyLockGranted, "a lock was granted", true, "NySeLock") \
    X(51, notifyLockReleased, "a lock was released", true, "NySeLock") \
    X(52, notifyConnectionOpened, "a connection was opened", true, "NySeConnection") \
    X(53, notifyConnectionClosed, "a connection was closed", true, "NySeConnection") \
    X(54, notifyUserJoined, "a user joined or registered again", true, "NySeUser") \
    X(55, notifyUserLeft, "a user left", true, "NySeUser") \
    X(56, notifyConnectionData, "connection data", false, nullptr) \
    X(57, notifyUserData, "user data", false, nullptr) \
    X(58, notifyDataForAll, "data for all", false, nullptr)
// clang-format on

namespace NySe {

// The action of a message: a request or a notification.
enum ActionType : int {
    noAction = -1,
#define NYSE_ENUMERATOR(enumerator, name, number) enumerator = number,
    NYSE_REQUESTS(NYSE_ENUMERATOR)
#undef NYSE_ENUMERATOR
#define NYSE_ENUMERATORS(number, enumerator, words, changesTables, object) \
    enumerator = number, actionNotification##number = number,
        NYSE_NOTIFICATIONS(NYSE_ENUMERATORS)
#undef NYSE_ENUMERATORS
            actionFirstNotification = actionNotification50,
    actionLastNotification = actionNotification58,
    lastSendableAction = 701  // a client sends no larger action
};

struct RequestKind {
    ActionType action;
    const char* name;  // of the client's call
};

inline constexpr RequestKind kRequests[] = {
#define NYSE_ROW(enumerator, name, number) {enumerator, name},
    NYSE_REQUESTS(NYSE_ROW)
#undef NYSE_ROW
};

struct NotificationKind {
    ActionType action;
    const char* words;
    bool changesTables;
    const char* object;  // class name; null when the application chooses the object
};

inline constexpr NotificationKind kNotifications[] = {
#define NYSE_ROW(number, enumerator, words, changesTables, object) \
    {enumerator, words, changesTables, object},
    NYSE_NOTIFICATIONS(NYSE_ROW)
#undef NYSE_ROW
};

constexpr bool isNotification(int action) {
    return action >= actionFirstNotification && action <= actionLastNotification;
}

// Returns the row of `action`; noAction with the words "unknown" if it is not a notification.
constexpr NotificationKind notificationKind(int action) {
    for (const NotificationKind& kind : kNotifications)
        if (kind.action == action) return kind;
    return {noAction, "unknown", false, nullptr};
}

// The form in which records are archived.
enum SchemaType : unsigned int {
    noSchema = 0,
    schema2015 = 2015  // the current one
};

// The reply of a running server or listener to actionIsAlive.
inline constexpr int kAliveAnswer = 512;

// A message starts with its action (when it has one) and the length of its payload, both signed and
// little-endian.
inline constexpr unsigned int kLengthBytes = 4;
inline constexpr unsigned int kActionHeaderBytes = 4 + kLengthBytes;

}  // namespace NySe
