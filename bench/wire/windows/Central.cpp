// nycentral with many clients: each requests its own lock, waits for the grant, which is timed, and
// releases it.
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "bench/wire/Samples.h"
#include "bench/wire/windows/Parts.h"
#include "NyServer/client/NySeClientApp.h"
#include "tests/apps/CentralProgram.h"
#include "tests/apps/ListenerRow.h"
#include "tests/support/Gate.h"

namespace {

constexpr unsigned kExclusive = NySe::exclude1 | NySe::exclude2;

class LockingClient {
  public:
    LockingClient(int port, int number)
        : m_name((L"assembly/part-" + std::to_wstring(number) + L".drw").c_str()) {
        bench::require(m_client.connect(port, "127.0.0.1", -1) == 0, "no connection");
        m_client.initializeSchema();
    }
    void work(bench::Clock::time_point end) {
        while (bench::Clock::now() < end) {
            m_times.time([this] { m_failures += m_client.lock(m_name, kExclusive) ? 0 : 1; });
            m_failures += m_client.unLock(m_name) ? 0 : 1;
        }
    }
    const bench::Samples& times() const { return m_times; }
    int failures() const { return m_failures; }

  private:
    const CString m_name;
    NySeClientApp m_client;
    bench::Samples m_times;
    int m_failures = 0;
};

// A user of the server whose listener is notified of every lock.
class ListeningUser {
  public:
    explicit ListeningUser(int port) {
        bench::require(m_client.connect(port, "127.0.0.1", -1) == 0, "no connection");
        m_client.initializeSchema();
        NySeUser user;
        user.setStrUserName("listener");
        user.setSchema(NySe::schema2015);
        bench::require(m_client.getPortClient(user) != 0, "no port for the listener");
    }

  private:
    NySeClientApp m_client;
};

// A port on which connections are accepted and nothing is ever read.
class StalledListener {
  public:
    StalledListener() {
        const int smallest = 1;
        ::setsockopt(m_socket.get(), SOL_SOCKET, SO_RCVBUF,
                     reinterpret_cast<const char*>(&smallest), sizeof smallest);
        bench::require(::listen(m_socket.get(), 5) == 0, "cannot listen");
    }
    std::wstring range() const {
        const std::wstring port = std::to_wstring(peers::portOf(m_socket));
        return port + L'-' + port;
    }

  private:
    const peers::WinsockSession m_winsock;
    const NySe::UniqueSocket m_socket = peers::bindToLoopback();
};

void printRow(const std::string& name, const bench::Samples& times, double seconds) {
    std::printf("| %s | %.0f | %.0f | %.0f | %.0f |\n", name.c_str(),
                static_cast<double>(times.count()) / seconds, times.quantile(0.5),
                times.quantile(0.99), times.quantile(0.999));
}

void timeClients(const std::string& name, int port, int count, const bench::WireOptions& options) {
    std::vector<std::unique_ptr<LockingClient>> clients;
    clients.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) clients.push_back(std::make_unique<LockingClient>(port, i));
    Gate ready;
    std::vector<std::thread> threads;
    threads.reserve(clients.size());
    const auto length = std::chrono::duration_cast<bench::Clock::duration>(options.seconds);
    for (const auto& client : clients) {
        threads.emplace_back([&ready, &client, count, length] {
            ready.meet(count + 1);
            client->work(bench::Clock::now() + length);
        });
    }
    bench::require(ready.meet(count + 1), "the clients do not start");
    const auto start = bench::Clock::now();
    for (std::thread& thread : threads) thread.join();
    const std::chrono::duration<double> taken = bench::Clock::now() - start;
    bench::Samples times;
    for (const auto& client : clients) {
        bench::require(client->failures() == 0, "a request failed");
        times.add(client->times());
    }
    printRow(name, times, taken.count());
}

void timeWithoutListener(const bench::WireOptions& options) {
    for (const int count : {1, 10, 100}) {
        CentralProgram program(L"");
        timeClients(std::to_string(count) + (count == 1 ? " client" : " clients"), program.port(),
                    count, options);
    }
}

void timeWithListener(const bench::WireOptions& options) {
    const ListenerRow listeners(1);
    CentralProgram program(L"--ports " + listeners.range());
    const ListeningUser user(program.port());
    timeClients("10 clients, one listener", program.port(), 10, options);
    bench::require(eventually([&] { return listeners.frames() > 0; }, std::chrono::seconds(60)),
                   "the listener was not notified");
}

void timeWithStalledListener(const bench::WireOptions& options) {
    const StalledListener listener;
    CentralProgram program(L"--ports " + listener.range());
    const ListeningUser user(program.port());
    timeClients("10 clients, one listener that never reads", program.port(), 10, options);
}

}  // namespace

void bench::runCentral(const WireOptions& options) {
    std::printf(
        "| `lock` of nycentral | a second | p50, us | p99, us | p99.9, us |\n"
        "|---|---:|---:|---:|---:|\n");
    timeWithoutListener(options);
    timeWithListener(options);
    timeWithStalledListener(options);
}
