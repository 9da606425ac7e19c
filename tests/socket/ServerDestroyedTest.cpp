// A server is destroyed at each step of its life. It lives in pages of its own, which nobody may
// touch afterwards.
#include "tests/socket/ProbeServer.h"
#include "tests/support/Guarded.h"
#include "tests/support/System.h"

namespace {

// A server, its peers, and what its threads wait for.
struct Scene {
    peers::WinsockSession winsock;
    Gate gate;
    Guarded<ProbeServer> server;
    std::shared_ptr<ServerLog> log = server->log;
    std::vector<peers::Connection> peers;

    void connect() { peers.push_back(server->connection()); }
    void start() { EXPECT_TRUE(server->start()); }
    // A connection with a thread of the server at the gate, where `hook` brings it.
    template <class Hook>
    void startAndWaitIn(Hook ProbeServer::*hook) {
        server->onConnect = [](LoggingWorker&) {};
        server.operator->()->*hook = [this](auto&&...) { gate.pass(); };
        start();
        connect();
        EXPECT_TRUE(gate.awaitArrivals());
    }
    void serve() { startAndWaitIn(&ProbeServer::onConnect); }
};

struct Step {
    const char* name;
    void (*reach)(Scene&);
};

const Step kSteps[] = {
    {"Made", [](Scene&) {}},
    {"UnableToListen",
     [](Scene& scene) {
         const peers::RefusingPort taken;
         EXPECT_EQ(scene.server->listenOn(taken.port()), UTE_SOCK_BIND_FAILED);
     }},
    {"Listening", [](Scene& scene) { EXPECT_EQ(scene.server->listen(), UTE_SUCCESS); }},
    {"ListeningWithAPeer",
     [](Scene& scene) {
         EXPECT_EQ(scene.server->listen(), UTE_SUCCESS);
         scene.connect();
     }},
    {"Accepting", [](Scene& scene) { scene.start(); }},
    {"InOnCanAccept", [](Scene& scene) { scene.startAndWaitIn(&ProbeServer::onCanAccept); }},
    {"MakingAWorker", [](Scene& scene) { scene.startAndWaitIn(&ProbeServer::onCreate); }},
    {"Serving", [](Scene& scene) { scene.serve(); }},
    {"Refusing",
     [](Scene& scene) {
         scene.server->SetMaxConnections(1);
         scene.serve();
         scene.connect();
         EXPECT_TRUE(scene.log->await("OnMaxConnect"));
     }},
    {"ReleasingAWorker", [](Scene& scene) { scene.startAndWaitIn(&ProbeServer::onRelease); }},
    {"DoneWithAPeer",
     [](Scene& scene) {
         scene.serve();
         scene.gate.open();
         EXPECT_TRUE(scene.log->await("worker deleted"));
     }},
    {"Stopped",
     [](Scene& scene) {
         scene.start();
         scene.server->StopAccept();
     }},
    {"StoppedWhileServing",
     [](Scene& scene) {
         scene.serve();
         scene.server->StopAccept();
     }},
    {"KilledWhileServing",
     [](Scene& scene) {
         scene.serve();
         scene.server->ThreadListKill();
     }},
    {"StartedAgain",
     [](Scene& scene) {
         scene.start();
         scene.server->StopAccept();
         scene.serve();
     }},
};

class ServerDestroyed : public testing::TestWithParam<Step> {
  protected:
    static void SetUpTestSuite() {
        s_threads = countThreadsAtRest();
        s_handles = handleLevel();
    }

    // Reaches the step and destroys the server; whoever waits for something gets it meanwhile.
    void destroyAtTheStep(ProbeServer::Ending ending) {
        {
            Scene scene;
            scene.server->ending = ending;
            GetParam().reach(scene);
            std::jthread meanwhile([&scene] {
                port::sleep(50);
                scene.gate.open();
                for (auto& peer : scene.peers) peer.send("x");
            });
            scene.server.destroy();
            expectNothingLeft(scene);
        }
        EXPECT_TRUE(eventually([&] { return countThreads() <= s_threads; }));
        // A few are for what the system itself keeps.
        EXPECT_TRUE(eventually([&] { return handleLevel() <= s_handles + 4; }));
    }

  private:
    static void expectNothingLeft(Scene& scene) {
        for (auto& peer : scene.peers) EXPECT_TRUE(peer.awaitClose());
        const int made = scene.log->count("OnConnect") + scene.log->count("OnMaxConnect");
        EXPECT_TRUE(scene.log->await("worker deleted", made));
    }

    static inline int s_threads = 0;
    static inline size_t s_handles = 0;
};

INSTANTIATE_TEST_SUITE_P(Step, ServerDestroyed, testing::ValuesIn(kSteps),
                         [](const auto& step) { return std::string(step.param.name); });

TEST_P(ServerDestroyed, HasWaitedForItsWorkers) {
    destroyAtTheStep(ProbeServer::Ending::WaitsForWorkers);
}

TEST_P(ServerDestroyed, LeavesItsWorkersToEndByThemselves) {
    destroyAtTheStep(ProbeServer::Ending::RunsDown);
}

}  // namespace
