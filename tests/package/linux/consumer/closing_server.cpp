// A server that closes each connection. Prints its port, and ends with its input.
#include <cstdio>

#include <NyServer/socket/CUT_WSServer.h>

class ClosingServer : public CUT_WSServer {
  public:
    ~ClosingServer() override { RunDown(); }
    bool start() {
        if (ConnectToPort(0, 5, AF_INET, htonl(INADDR_LOOPBACK)) != 0) return false;
        SetPort(GetBoundPort());
        return StartAccept() == 0;
    }

  protected:
    CUT_WSThread* CreateInstance() override { return nullptr; }
    void ReleaseInstance(CUT_WSThread*) override {}
};

int main() {
    ClosingServer server;
    if (!server.start()) return 1;
    std::printf("%u\n", server.GetPort());
    std::fflush(stdout);
    std::getchar();
}
