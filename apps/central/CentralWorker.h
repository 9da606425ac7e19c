// CentralWorker: serves one client's connection.
#pragma once

#include "NyServer/framing/NySeMemFile.h"
#include "NyServer/socket/CUT_WSThread.h"

class CentralServer;
struct Frame;

// Made, run and deleted on the connection's own thread. One connection is one session; what the
// session holds in the server's tables is let go when the handler returns, however it does.
class CentralWorker : public CUT_WSThread {
  public:
    explicit CentralWorker(CentralServer& server);

    void OnConnect() override;

    bool isShuttingDown() const;

  private:
    void serve();
    // False when the connection is over.
    bool answer(Frame& frame);

    void answerSchema(Frame& frame);
    void answerPortClient(Frame& frame);
    void answerAllUser();

    template <class Scalar>
    void sendScalar(Scalar value);
    void sendObject(const CObject& object);
    void sendEmpty();
    void sendMessage(NySeMemFile& message);

    CentralServer& m_server;
    const LONG m_sessionNumber;
};
