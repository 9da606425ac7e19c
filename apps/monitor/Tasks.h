// The user's requests, which the worker sends.
#pragma once

#include <functional>
#include <string>

#include "apps/common/Session.h"

namespace apps::monitor {

struct Task {
    std::wstring event;  // for the log
    std::wstring what;   // its object, as "part/42"
    // Sends the request and returns the outcome in words. The caller checks afterwards whether the
    // server has replied.
    std::function<std::wstring(NySeClientApp& client, Account& account)> run;
};

// A receiver of a message: the user of a session, or everybody.
struct Receiver {
    static constexpr LONG kEverybody = -1;

    std::wstring name;
    LONG session = kEverybody;
};

Task lockTask(const std::wstring& name, unsigned mode);
Task unlockTask(const std::wstring& name);
Task openTask(const std::wstring& connection);
Task closeTask(const std::wstring& connection, LONG id);
Task sendTask(const Receiver& receiver, const std::wstring& text);
// Sets the account's user to a name that the server accepts.
Task renameTask(const std::wstring& name);

}  // namespace apps::monitor
