// What the user can ask of the server.
#pragma once

#include <functional>
#include <string>

#include "apps/common/Session.h"

namespace apps::monitor {

struct Request {
    std::wstring event;  // as the log calls it
    std::wstring what;   // is asked for
    // Asks, and returns what came of it in words. Whether there was an answer is found out
    // afterwards.
    std::function<std::wstring(NySeClientApp& client, Account& account)> run;
};

// Who is sent something: the user of a session, or everybody.
struct Receiver {
    static constexpr LONG kEverybody = -1;

    std::wstring name;
    LONG session = kEverybody;
};

Request lockRequest(const std::wstring& name, unsigned mode);
Request unlockRequest(const std::wstring& name);
Request openRequest(const std::wstring& connection);
Request closeRequest(const std::wstring& connection, LONG id);
Request sendRequest(const Receiver& receiver, const std::wstring& text);
// The account keeps a name that the server has taken.
Request renameRequest(const std::wstring& name);

}  // namespace apps::monitor
