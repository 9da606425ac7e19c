// Session: the connection of a user to a central server.
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

// Parses HOST:PORT. Returns nothing if `server` has another form.
std::optional<ServerAddress> parseServer(const std::string& server);

// A user and a server.
struct Account {
    std::string server = "127.0.0.1:42015";  // HOST:PORT
    std::string user;                        // who registers, in UTF-8
};

// Connects at first use and disconnects when it is destroyed. Used by one thread.
class Session {
  public:
    // The account is read when the connection is opened and must outlive the session.
    explicit Session(const Account& account) : m_account(account) {}
    virtual ~Session() { close(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Connects and agrees on the schema, unless that was done. Returns whether both succeeded.
    bool open();
    // Connects only, unless that was done. Returns whether there is a connection.
    bool connect();
    // Disconnects; the next open connects again. Call it after a missing reply: a late reply
    // would be taken for that of the next request.
    void close();
    // Registers the user, unless that was done. Returns false if there is no connection or the
    // server assigned no port.
    bool registerUser();
    // Returns the user's listener, which listens after listen. It is destroyed with the connection,
    // not before: the server removes a user whose listener has ended.
    NyServerApp& listener();
    // Registers the user and listens, unless that was done, at the port that the server assigns. If
    // that port is in use on this machine, requests another one. Returns false if there is no
    // connection or the server has no other port.
    bool listen();
    // The same for a user that was just registered, starting with the assigned `port`.
    bool listenFrom(LONG port);

    NySeClientApp& client() { return m_client; }
    const NySeUser& user() const { return m_user; }
    const std::string& server() const { return m_account.server; }

  protected:
    // Creates the listener of a connection.
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
