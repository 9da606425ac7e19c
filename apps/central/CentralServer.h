// CentralServer: the reference central server.
#pragma once

#include "apps/central/CentralTables.h"
#include "NyServer/socket/CUT_WSServer.h"

// One worker per client connection, all on one set of tables. One thread starts, stops and destroys
// it.
class CentralServer : public CUT_WSServer {
  public:
    static constexpr double kVersion = 1.0;

    CentralServer() = default;
    // Ends every session and waits for the workers.
    ~CentralServer() override;

    // 0, or the result code of what failed. address: in network order; port 0: any free one, then
    // found in GetPort().
    int start(unsigned long address, unsigned short port);

    CentralTables& tables() { return m_tables; }

  protected:
    CUT_WSThread* CreateInstance() override;
    void ReleaseInstance(CUT_WSThread* worker) override;

  private:
    CentralTables m_tables;
};
