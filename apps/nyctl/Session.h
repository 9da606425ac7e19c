// Session: the connection that the commands share.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "apps/nyctl/Options.h"
#include "NyServer/client/NySeClientApp.h"
#include "NyServer/listener/NyServerApp.h"

struct ServerAddress {
    std::string host;
    int port = 0;
};

// HOST:PORT taken apart; nothing when `server` is something else.
std::optional<ServerAddress> parseServer(const std::string& server);

// Connects when the first command needs it and says good-bye at its end. Used by one thread.
class Session {
  public:
    // The options are read when the connection is opened; they must outlive the session.
    explicit Session(const Options& options) : m_options(options) {}
    ~Session() { close(); }
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
    const Options& options() const { return m_options; }
    const std::string& server() const { return m_options.server; }
    bool isShell() const { return m_options.isShell; }

  private:
    int firstPort();

    const Options& m_options;
    NySeClientApp m_client;
    NySeUser m_user;
    bool m_connected = false;
    bool m_registered = false;
    bool m_listening = false;
    std::unique_ptr<NyServerApp> m_listener;
};
