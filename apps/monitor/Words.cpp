#include "apps/monitor/Words.h"

#include "apps/common/Utf8.h"

namespace apps::monitor {

std::wstring wide(const CString& text) {
    return {text.GetString(), static_cast<size_t>(text.GetLength())};
}

std::wstring wide(const std::string& utf8) {
    return wide(fromUtf8(utf8));
}

namespace words {

std::wstring connecting(const Account& account) {
    return L"Connecting to " + wide(account.server);
}

std::wstring connected(const Account& account, const NySeUser& user) {
    return L"Connected to " + wide(account.server) + L" as " + wide(account.user) + L", session " +
           std::to_wstring(user.getSessionNumber());
}

std::wstring waiting(const std::wstring& reason, std::chrono::milliseconds delay) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(delay).count();
    return reason + L". Trying again in " + std::to_wstring(seconds) + L" s";
}

std::wstring noConnection(const Account& account) {
    return L"No connection to " + wide(account.server);
}

std::wstring noPort() {
    return L"The server has no port that is free on this machine";
}

std::wstring connectionLost() {
    return L"The connection to the server was lost";
}

std::wstring noReply() {
    return L"The server does not reply";
}

std::wstring noMemory() {
    return L"Out of memory";
}

std::wstring notConnected() {
    return L"no connection";
}

std::wstring posted(const Backlog& backlog) {
    return L"Posted " + std::to_wstring(backlog.posted) + L" of " + std::to_wstring(backlog.limit);
}

std::wstring flow(const Backlog& backlog) {
    return backlog.isPaused ? L"Paused" : L"Reading";
}

std::wstring counted(const std::wstring& title, int shown, int total) {
    std::wstring text = title + L" (" + std::to_wstring(shown);
    if (shown != total) text += L" of " + std::to_wstring(total);
    return text + L')';
}

}  // namespace words

}  // namespace apps::monitor
