#include "apps/common/NotificationText.h"

#include <cstdio>
#include <ctime>

#include "apps/common/Utf8.h"
#include "NyServer/records/NySeConnection.h"
#include "NyServer/records/NySeLock.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeShareMode.h"
#include "NyServer/records/NySeUser.h"

namespace apps {

namespace {

using Clock = std::chrono::system_clock;

// Returns the broken-down time and the milliseconds of `time`, as "2026-11-21T16:05:59.123".
std::string timeText(const std::tm* fields, Clock::time_point time) {
    using std::chrono::milliseconds;
    const auto part = std::chrono::floor<milliseconds>(time.time_since_epoch()).count() % 1000;
    char text[32] = "";
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", fields);
    char fraction[8];
    std::snprintf(fraction, sizeof fraction, ".%03d", static_cast<int>(part));
    return std::string(text) + fraction;
}

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

std::string timeOfDay(Clock::time_point time) {
    const std::time_t seconds = Clock::to_time_t(time);
    return timeText(std::localtime(&seconds), time).substr(sizeof "2026-11-21");
}

std::string isoTime(Clock::time_point time) {
    const std::time_t seconds = Clock::to_time_t(time);
    return timeText(std::gmtime(&seconds), time) + 'Z';
}

}  // namespace apps
