// Session: the connection that the commands share.
#pragma once

#include <string>

#include "apps/nyctl/Options.h"
#include "NyServer/client/NySeClientApp.h"

// Whether `server` is HOST:PORT.
bool isServerAddress(const std::string& server);

// Connects when the first command needs it and says good-bye at its end. Used by one thread.
class Session {
  public:
    // The options are read when the connection is opened; they must outlive the session.
    explicit Session(const Options& options) : m_options(options) {}
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // True when there is a connection on which the schema has been agreed.
    bool open();
    // Enters the user at the server, once. False when there is no connection or the server gave no
    // port.
    bool registerUser();

    NySeClientApp& client() { return m_client; }
    const NySeUser& user() const { return m_user; }
    const std::string& server() const { return m_options.server; }

  private:
    const Options& m_options;
    NySeClientApp m_client;
    NySeUser m_user;
    bool m_connected = false;
    bool m_registered = false;
};
