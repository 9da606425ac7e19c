#include "apps/nyctl/Notification.h"

#include <array>
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

}  // namespace

Notification readNotification(NySe::ActionType action, CMemFile& payload) {
    const auto now = std::chrono::system_clock::now();
    const ULONGLONG size = payload.GetLength();
    const std::unique_ptr<CObject> object(NySe::readReplyObject(payload, nullptr));
    const Kind* const kind = object ? findKind(*object) : nullptr;
    const char* const words = NySe::notificationKind(action).words;
    return {timeOfDay(now) + "  " + std::to_string(action) + ' ' + words + "  " +
                notificationContent(object.get()) + "  (" + std::to_string(size) + " bytes)",
            {{"time", isoTime(now)},
             {"action", static_cast<int>(action)},
             {"words", words},
             {"class", object ? Record(object->GetRuntimeClass()->m_lpszClassName) : Record()},
             {"object", kind != nullptr ? kind->fields(*object) : Record()},
             {"size", size}}};
}

}  // namespace apps::nyctl
