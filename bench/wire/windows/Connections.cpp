// The cost of open connections: of a thread and a socket for each, of the listener's, and of
// nycentral's.
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "bench/wire/RawCalls.h"
#include "bench/wire/RawServer.h"
#include "bench/wire/windows/Parts.h"
#include "bench/wire/windows/ProcessUsage.h"
#include "NyServer/client/NySeClientApp.h"
#include "NyServer/listener/NyServerApp.h"
#include "tests/apps/CentralProgram.h"
#include "tests/socket/LocalConnection.h"
#include "tests/support/Gate.h"

namespace {

using bench::ProcessUsage;

constexpr std::chrono::seconds kLongestWait{60};  // less than as a test it may take

void printRow(const char* name, const ProcessUsage& before, const ProcessUsage& after, int count) {
    const auto each = [count](SIZE_T more, SIZE_T less) {
        return (static_cast<double>(more) - static_cast<double>(less)) / count;
    };
    std::printf(
        "| %s | %.1f | %.1f | %.2f |\n", name, each(after.workingSet, before.workingSet) / 1024,
        each(after.committed, before.committed) / 1024, each(after.handles, before.handles));
}

class CountingListener : public NyServerApp {
  public:
    ~CountingListener() override { endConnections(); }
    bool holds(int count) {
        return eventually([&] { return GetNumConnections() == count; }, kLongestWait);
    }
};

// The other ends are in a separate process, so that this one has only what is counted. That process
// ends with this one, which closes its input.
class Holder {
  public:
    explicit Holder(unsigned int port)
        : m_process(L"bench-wire.exe", L"hold --port " + std::to_wstring(port),
                    m_orders.reading.get(), nullptr, nullptr) {
        m_orders.reading.reset();
    }

    // One after the other: a connect that finds the listen queue full is only tried again a second
    // later.
    template <class Taken>
    void open(int count, Taken isTaken) {
        for (int i = 1; i <= count; ++i) {
            DWORD written = 0;
            ::WriteFile(m_orders.writing.get(), "\n", 1, &written, nullptr);
            bench::require(written == 1 && isTaken(i), "a connection is not taken");
        }
    }

  private:
    // The child must not hold its own input open.
    struct Orders : Pipe {
        Orders() { keepToOneself(writing); }
    };

    Orders m_orders;
    ChildProcess m_process;
};

// A thread for each connection, which waits for data as the listener's do.
class ThreadPerSocket {
  public:
    ThreadPerSocket() { ::listen(m_socket.get(), SOMAXCONN); }
    ~ThreadPerSocket() {
        m_isStopping = true;
        for (std::thread& thread : m_threads) thread.join();
    }
    ThreadPerSocket(const ThreadPerSocket&) = delete;
    ThreadPerSocket& operator=(const ThreadPerSocket&) = delete;

    unsigned int port() const { return static_cast<unsigned int>(peers::portOf(m_socket)); }
    // Whether it has `count` threads that wait, one more than before.
    bool accept(int count) {
        if (!bench::awaitReadable(m_socket.get(), kLongestWait.count())) return false;
        m_threads.emplace_back(
            [this, socket = ::accept(m_socket.get(), nullptr, nullptr)] { wait(socket); });
        return eventually([&] { return m_waiting == count; }, kLongestWait);
    }

  private:
    void wait(SOCKET accepted) {
        const NySe::UniqueSocket socket(accepted);
        ++m_waiting;
        while (!m_isStopping) bench::awaitReadable(socket.get(), 0, 100'000);
    }

    const NySe::UniqueSocket m_socket = peers::bindToLoopback();
    std::atomic<bool> m_isStopping = false;
    std::atomic<int> m_waiting = 0;
    std::vector<std::thread> m_threads;
};

void holdInThreads(int count) {
    ThreadPerSocket listener;
    const ProcessUsage before = ProcessUsage::of(::GetCurrentProcess());
    Holder holder(listener.port());
    holder.open(count, [&](int opened) { return listener.accept(opened); });
    printRow("a thread that waits for its socket", before, ProcessUsage::of(::GetCurrentProcess()),
             count);
}

void holdInListener(int count) {
    CountingListener listener;
    bench::require(listener.Start() == 0, "the listener does not start");
    const ProcessUsage before = ProcessUsage::of(::GetCurrentProcess());
    Holder holder(listener.GetBoundPort());
    holder.open(count, [&](int opened) { return listener.holds(opened); });
    printRow("`NyServerApp`", before, ProcessUsage::of(::GetCurrentProcess()), count);
}

void holdInCentral(int count) {
    CentralProgram program(L"");
    const HANDLE process = program.process().handle();
    std::vector<std::unique_ptr<NySeClientApp>> clients;
    const auto holdOneMore = [&] {
        clients.push_back(std::make_unique<NySeClientApp>());
        const bool isServed = clients.back()->connect(program.port(), "127.0.0.1", -1) == 0 &&
                              clients.back()->isAlive();
        bench::require(isServed, "nycentral does not serve a connection");
    };
    holdOneMore();  // whatever comes with the first
    const ProcessUsage before = ProcessUsage::of(process);
    for (int i = 0; i < count; ++i) holdOneMore();
    printRow("`nycentral`", before, ProcessUsage::of(process), count);
}

}  // namespace

void bench::runConnections(const WireOptions& options) {
    const peers::WinsockSession winsock;
    std::printf(
        "| %d connections held open | working set, KiB each | committed, KiB each | handles each "
        "|\n|---|---:|---:|---:|\n",
        options.connections);
    holdInThreads(options.connections);
    holdInListener(options.connections);
    holdInCentral(options.connections);
}

void bench::holdConnections(const WireOptions& options) {
    const peers::WinsockSession winsock;
    std::vector<NySe::UniqueSocket> held;
    while (std::getchar() != EOF)
        held.push_back(peers::connectTo(static_cast<unsigned int>(options.port)));
}
