#include "apps/common/NotificationText.h"

#include <cstdio>

#include "apps/common/Utf8.h"
#include "NyServer/records/NySeConnection.h"
#include "NyServer/records/NySeLock.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeShareMode.h"
#include "NyServer/records/NySeUser.h"

namespace apps {

namespace {

std::string number(LONG value) {
    return std::to_string(value);
}

std::string textOf(const NySeSessionLock& holder) {
    return "session " + number(holder.getSessionNumber()) + " (" +
           NySe::shareModeWords(holder.getLockState()) + ')';
}

std::string textOf(const NySeLock& lock) {
    std::string text = toUtf8(lock.getStrLockName()) + ", held by ";
    const NySeSessionLockPtrArray& holders = lock.getHolders();
    for (INT_PTR i = 0; i < holders.GetSize(); ++i) text += (i ? ", " : "") + textOf(*holders[i]);
    return holders.GetSize() > 0 ? text : text + "nobody";
}

std::string textOf(const NySeConnection& connection) {
    return toUtf8(connection.getStrConnection()) + ", id " + number(connection.getId()) +
           ", opens " + number(connection.getRefCount());
}

std::string textOf(const NySeUser& user) {
    return toUtf8(user.getStrUserName()) + ", session " + number(user.getSessionNumber()) +
           ", port " + number(user.getPort()) + " on " + toUtf8(user.getStrHostName());
}

std::string textOf(const NySeMessage& message) {
    return toUtf8(message.getStrMessage());
}

// Returns an empty text if `object` is not a Record.
template <class Record>
std::string textIf(const CObject& object) {
    return object.IsKindOf(RUNTIME_CLASS(Record))
               ? ": " + textOf(static_cast<const Record&>(object))
               : std::string();
}

}  // namespace

std::string notificationContent(const CObject* object) {
    if (object == nullptr) return "no object";
    return object->GetRuntimeClass()->m_lpszClassName + textIf<NySeLock>(*object) +
           textIf<NySeConnection>(*object) + textIf<NySeUser>(*object) +
           textIf<NySeMessage>(*object) + textIf<NySeSessionLock>(*object);
}

std::string timeOfDay(const SYSTEMTIME& utc) {
    SYSTEMTIME local;
    ::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u.%03u", local.wHour, local.wMinute,
                  local.wSecond, local.wMilliseconds);
    return text;
}

}  // namespace apps
