#include "apps/nyctl/Notification.h"

#include <array>
#include <cstdio>
#include <memory>

#include "apps/common/NotificationText.h"
#include "apps/nyctl/CommandTools.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeShareMode.h"

namespace apps::nyctl {

namespace {

using nyctl::describe;  // of users and connections

Record describe(const NySeSessionLock& holder) {
    return {{"session", holder.getSessionNumber()},
            {"mode", shareModeDigits(holder.getLockState())},
            {"words", NySe::shareModeWords(holder.getLockState())}};
}

Record describe(const NySeLock& lock) {
    Record holders = Record::array();
    for (INT_PTR i = 0; i < lock.getHolders().GetSize(); ++i)
        holders.push_back(describe(*lock.getHolders()[i]));
    return {{"lock", toUtf8(lock.getStrLockName())}, {"holders", holders}};
}

Record describe(const NySeMessage& message) {
    return {{"message", toUtf8(message.getStrMessage())}};
}

// The conversion of the objects of one class to JSON.
struct Kind {
    const CRuntimeClass* type;
    Record (*fields)(const CObject& object);
};

template <class T>
Kind kindOf() {
    return {RUNTIME_CLASS(T),
            [](const CObject& object) { return describe(static_cast<const T&>(object)); }};
}

const Kind* findKind(const CObject& object) {
    static const std::array kKinds = {kindOf<NySeLock>(), kindOf<NySeConnection>(),
                                      kindOf<NySeUser>(), kindOf<NySeMessage>(),
                                      kindOf<NySeSessionLock>()};
    for (const Kind& kind : kKinds)
        if (object.IsKindOf(kind.type)) return &kind;
    return nullptr;
}

std::string isoTime(const SYSTEMTIME& utc) {
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ", utc.wYear, utc.wMonth,
                  utc.wDay, utc.wHour, utc.wMinute, utc.wSecond, utc.wMilliseconds);
    return text;
}

}  // namespace

Notification readNotification(NySe::ActionType action, CMemFile& payload) {
    SYSTEMTIME utc;
    ::GetSystemTime(&utc);
    const ULONGLONG size = payload.GetLength();
    const std::unique_ptr<CObject> object(NySe::readReplyObject(payload, nullptr));
    const Kind* const kind = object ? findKind(*object) : nullptr;
    const char* const words = NySe::notificationKind(action).words;
    return {timeOfDay(utc) + "  " + std::to_string(action) + ' ' + words + "  " +
                notificationContent(object.get()) + "  (" + std::to_string(size) + " bytes)",
            {{"time", isoTime(utc)},
             {"action", static_cast<int>(action)},
             {"words", words},
             {"class", object ? Record(object->GetRuntimeClass()->m_lpszClassName) : Record()},
             {"object", kind != nullptr ? kind->fields(*object) : Record()},
             {"size", size}}};
}

}  // namespace apps::nyctl
