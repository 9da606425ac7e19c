#include "apps/monitor/Tasks.h"

#include "apps/common/Utf8.h"
#include "apps/monitor/Words.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeShareMode.h"

namespace apps::monitor {

namespace {

CString toCString(const std::wstring& text) {
    return {text.c_str(), static_cast<int>(text.size())};
}

// The server does not reply to it.
constexpr wchar_t kSent[] = L"sent";

void send(NySeClientApp& client, const Receiver& receiver, NySeMessage& message) {
    if (receiver.session == Receiver::kEverybody) {
        client.sendAllUserData(message);
        return;
    }
    NySeUser user;
    user.setStrUserName(toCString(receiver.name));
    user.setSessionNumber(receiver.session);
    user.setSchema(client.getSchemaType());
    client.sendUserData(user, message);
}

}  // namespace

Task lockTask(const std::wstring& name, unsigned mode) {
    return {L"Lock", name + L" (" + wide(NySe::shareModeWords(mode)) + L')',
            [name, mode](NySeClientApp& client, Account&) {
                return client.lock(toCString(name), mode) ? L"granted" : L"refused";
            }};
}

Task unlockTask(const std::wstring& name) {
    return {L"Unlock", name, [name](NySeClientApp& client, Account&) {
                client.unLock(toCString(name));
                return kSent;
            }};
}

Task openTask(const std::wstring& connection) {
    return {L"Open", connection, [connection](NySeClientApp& client, Account&) {
                const long id = client.openConnection(toCString(connection));
                return id < 0 ? L"refused" : L"opened, id " + std::to_wstring(id);
            }};
}

Task closeTask(const std::wstring& connection, LONG id) {
    return {L"Close", connection, [id](NySeClientApp& client, Account&) {
                client.closeConnection(id);
                return kSent;
            }};
}

Task sendTask(const Receiver& receiver, const std::wstring& text) {
    return {L"Send", L"to " + receiver.name, [receiver, text](NySeClientApp& client, Account&) {
                NySeMessage message;
                message.setStrMessage(toCString(text));
                send(client, receiver, message);
                return kSent;
            }};
}

Task renameTask(const std::wstring& name) {
    return {L"Rename", name, [name](NySeClientApp& client, Account& account) {
                if (!client.updateUserName(toCString(name))) return L"refused";
                account.user = toUtf8(toCString(name));
                return L"accepted";
            }};
}

}  // namespace apps::monitor
