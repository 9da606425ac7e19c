#include "apps/nyctl/Notice.h"

#include <array>
#include <cstdio>
#include <memory>

#include "apps/nyctl/CommandTools.h"
#include "apps/nyctl/ShareMode.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/records/NySeMessage.h"

namespace {

// The words of docs/central-server.md.
const char* wordsOf(NySe::ActionType action) {
    static constexpr std::array kWords = {"a lock was granted",
                                          "a lock was released",
                                          "a connection was opened",
                                          "a connection was closed",
                                          "a user joined or registered again",
                                          "a user left",
                                          "connection data",
                                          "user data",
                                          "data for all"};
    static_assert(kWords.size() ==
                  NySe::actionLastNotification - NySe::actionFirstNotification + 1);
    const auto index = static_cast<size_t>(action - NySe::actionFirstNotification);
    return index < kWords.size() ? kWords[index] : "unknown";
}

std::string number(LONG value) {
    return std::to_string(value);
}

Record describe(const NySeSessionLock& holder) {
    return {{"session", holder.getSessionNumber()},
            {"mode", shareModeDigits(holder.getLockState())},
            {"words", shareModeWords(holder.getLockState())}};
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

std::string textOf(const NySeSessionLock& holder) {
    return "session " + number(holder.getSessionNumber()) + " (" +
           shareModeWords(holder.getLockState()) + ')';
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

// How to show the objects of one class.
struct Kind {
    const CRuntimeClass* type;
    std::string (*text)(const CObject& object);
    Record (*fields)(const CObject& object);
};

template <class T>
Kind kindOf() {
    return {RUNTIME_CLASS(T),
            [](const CObject& object) { return textOf(static_cast<const T&>(object)); },
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

std::string textOf(const CObject* object, const Kind* kind) {
    if (object == nullptr) return "no object";
    const std::string name = object->GetRuntimeClass()->m_lpszClassName;
    return kind != nullptr ? name + ": " + kind->text(*object) : name;
}

std::string timeOfDay(const SYSTEMTIME& utc) {
    SYSTEMTIME local;
    ::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u.%03u", local.wHour, local.wMinute,
                  local.wSecond, local.wMilliseconds);
    return text;
}

std::string isoTime(const SYSTEMTIME& utc) {
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ", utc.wYear, utc.wMonth,
                  utc.wDay, utc.wHour, utc.wMinute, utc.wSecond, utc.wMilliseconds);
    return text;
}

}  // namespace

Notice readNotice(NySe::ActionType action, CMemFile& payload) {
    SYSTEMTIME utc;
    ::GetSystemTime(&utc);
    const ULONGLONG size = payload.GetLength();
    const std::unique_ptr<CObject> object(NySe::readReplyObject(payload, nullptr));
    const Kind* const kind = object ? findKind(*object) : nullptr;
    return {timeOfDay(utc) + "  " + number(action) + ' ' + wordsOf(action) + "  " +
                textOf(object.get(), kind) + "  (" + std::to_string(size) + " bytes)",
            {{"time", isoTime(utc)},
             {"action", static_cast<int>(action)},
             {"words", wordsOf(action)},
             {"class", object ? Record(object->GetRuntimeClass()->m_lpszClassName) : Record()},
             {"object", kind != nullptr ? kind->fields(*object) : Record()},
             {"size", size}}};
}
