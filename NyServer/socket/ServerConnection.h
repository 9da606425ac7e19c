#pragma once

#include <memory>

#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/RundownProtection.h"
#include "NyServer/socket/SocketCalls.h"

// An accepted connection of a CUT_WSServer, passed from the accept thread to the thread that
// serves it.
class ServerConnection {
  public:
    struct Accepted {
        NySe::UniqueSocket socket;
        SOCKET listenSocket;
        sockaddr_in peer;
        bool isTooMany;
        CUT_WSServer* server;
        std::shared_ptr<RundownProtection> rundown;
    };

    // Starts the connection's thread, which takes ownership of `accepted`. If no thread can be
    // created, the connection is closed.
    static void start(Accepted accepted);

  private:
    explicit ServerConnection(Accepted accepted) : m_accepted(std::move(accepted)) {}
    ~ServerConnection();

    static void threadMain(void* connection);
    void serve();
    CUT_WSThread* createWorker();
    void initialize(CUT_WSThread& worker);
    void runHandler(CUT_WSThread& worker);
    void removeAndDestroy(CUT_WSThread* worker);
    void release(CUT_WSThread* worker);

    Accepted m_accepted;
    RundownProtection::Entry m_entry;
};
