// CentralServer: the reference central server.
#pragma once

#include <functional>
#include <vector>

#include "apps/central/CentralTables.h"
#include "apps/central/EventLog.h"
#include "apps/central/LostSessions.h"
#include "apps/central/Pusher.h"
#include "NyServer/socket/CUT_WSServer.h"

struct CentralSettings {
    // The notification ports to hand out.
    std::vector<LONG> ports = portRange(42100, 42999);
    // Connections beyond it are closed at once. 1 to kMostSessions.
    int maxSessions = kMostSessions;
    TableLimits tables;
    PushLimits push;
    // A client that stops in the middle of a request is given up after this.
    std::chrono::milliseconds framePatience{30'000};
    // Called on a client's thread when it asks for the end; must not wait for the server.
    std::function<void()> onShutDownRequest = [] {};
};

// One worker per client connection, all on one set of tables. One thread starts, stops and destroys
// it.
class CentralServer : public CUT_WSServer {
  public:
    static constexpr double kVersion = 1.0;

    explicit CentralServer(CentralSettings settings = {});
    ~CentralServer() override { stop(); }

    // 0, or the result code of what failed. address: in network order; port 0: any free one, then
    // found in GetPort().
    int start(unsigned long address, unsigned short port);

    // Ends every session and waits for the workers and the senders; the destructor does the same.
    // It cannot be started again.
    void stop();

    CentralTables& tables() { return m_tables; }
    EventLog& events() { return m_events; }
    LostSessions& lostSessions() { return m_lostSessions; }
    const Pusher& pusher() const { return m_pusher; }
    std::chrono::milliseconds framePatience() const { return m_settings.framePatience; }
    void requestShutDown() const { m_settings.onShutDownRequest(); }

  protected:
    CUT_WSThread* CreateInstance() override;
    void ReleaseInstance(CUT_WSThread* worker) override;

  private:
    const CentralSettings m_settings;
    EventLog m_events;
    LostSessions m_lostSessions;
    Pusher m_pusher;
    CentralTables m_tables;
};
