// What the user can have the worker do with the server.
#pragma once

#include <functional>
#include <string>

#include "apps/common/Session.h"

namespace apps::monitor {

struct Task {
    std::wstring event;  // as the log calls it
    std::wstring what;   // its object, as "part/42"
    // Makes the request and returns the outcome in words. Whether the server has answered is found
    // out afterwards.
    std::function<std::wstring(NySeClientApp& client, Account& account)> run;
};

// Who is sent something: the user of a session, or everybody.
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
// The account keeps a name that the server has taken.
Task renameTask(const std::wstring& name);

}  // namespace apps::monitor
