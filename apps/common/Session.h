// Session: a user's connection to a central server.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/listener/NyServerApp.h"

namespace apps {

struct ServerAddress {
    std::string host;
    int port = 0;
};

// HOST:PORT taken apart; nothing when `server` is something else.
std::optional<ServerAddress> parseServer(const std::string& server);

// The name under which the user is logged in on this machine, in UTF-8.
std::string loginName();

// Who talks to which server.
struct Account {
    std::string server = "127.0.0.1:42015";  // HOST:PORT
    std::string user;                        // who registers, in UTF-8
};

// Connects when that is first needed and says good-bye at its end. Used by one thread.
class Session {
  public:
    // The account is read when the connection is opened; it must outlive the session.
    explicit Session(const Account& account) : m_account(account) {}
    virtual ~Session() { close(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // True when there is a connection on which the schema has been agreed.
    bool open();
    // The first half of open: true when there is a connection. Nothing is agreed on it yet.
    bool connect();
    // Ends the connection; the next open makes a new one. For use after a missed answer: one that
    // comes late would be taken for the next request's.
    void close();
    // Enters the user at the server, once. False when there is no connection or the server gave no
    // port.
    bool registerUser();
    // The user's listener, which does not listen before listen. It goes with the connection, not
    // earlier: the server takes a user whose listener has gone for one who has gone.
    NyServerApp& listener();
    // Registers the user and listens, unless that was done: at the port that the server gives, or
    // at another one that it gives when that is taken on this machine. False when there is no
    // connection or the server gave no port that is free.
    bool listen();
    // The same for a user who has just been registered, from the port on that came with it.
    bool listenFrom(LONG port);

    NySeClientApp& client() { return m_client; }
    const NySeUser& user() const { return m_user; }
    const std::string& server() const { return m_account.server; }

  protected:
    // The listener of each new connection.
    virtual std::unique_ptr<NyServerApp> makeListener() const;

  private:
    int firstPort();

    const Account& m_account;
    NySeClientApp m_client;
    NySeUser m_user;
    bool m_connected = false;
    bool m_registered = false;
    bool m_listening = false;
    std::unique_ptr<NyServerApp> m_listener;
};

}  // namespace apps
