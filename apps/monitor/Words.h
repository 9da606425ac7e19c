// The window's texts.
#pragma once

#include <afx.h>

#include <chrono>
#include <string>

#include "apps/common/Session.h"
#include "apps/monitor/MonitorListener.h"

namespace apps::monitor {

// Texts of the window are UTF-16, like the system's.
std::wstring wide(const CString& text);
std::wstring wide(const std::string& utf8);

namespace words {

std::wstring connecting(const Account& account);
std::wstring connected(const Account& account, const NySeUser& user);
// The reason why there is no connection, and the time until the next attempt.
std::wstring waiting(const std::wstring& reason, std::chrono::milliseconds delay);
std::wstring noConnection(const Account& account);
std::wstring noPort();
std::wstring connectionLost();
std::wstring noReply();
std::wstring noMemory();
// The outcome of a request.
std::wstring notConnected();

// As "Posted 3 of 9000".
std::wstring posted(const Backlog& backlog);
// Whether the listener reads notifications, or has paused.
std::wstring flow(const Backlog& backlog);

// The title over a list, as "Users (12)", or "Users (3 of 12)" when some are not shown.
std::wstring counted(const std::wstring& title, int shown, int total);

}  // namespace words

}  // namespace apps::monitor
