// 200 clients at once, of which 20 are killed: nothing is left of anybody, every request is
// answered, memory stays flat. NY_LOAD_SECONDS says how long it lasts: 10 unless set.

#include <cstdlib>
#include <latch>
#include <random>
#include <thread>

#include "tests/apps/CentralTest.h"
#include "tests/apps/CollectingListener.h"
#include "tests/support/WorkingSet.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kClients = 200;
constexpr int kKilled = 20;
constexpr int kListening = 10;
constexpr int kNames = 1'000;
constexpr unsigned int kSeed = 20'150'201;
constexpr SIZE_T kFlatBytes = 8 * 1024 * 1024;

std::chrono::milliseconds duration() {
    const char* seconds = std::getenv("NY_LOAD_SECONDS");
    return std::chrono::seconds(seconds == nullptr ? 10 : std::atoi(seconds));
}

// A port whose listener reads and forgets.
class Sink {
  public:
    LONG port() const { return static_cast<LONG>(m_peer.port()); }

  private:
    peers::Peer m_peer{[](peers::Connection& connection) { connection.receiveAll(); }};
};

struct Sinks {
    std::array<Sink, kListening> sinks;

    std::vector<LONG> ports() const {
        std::vector<LONG> all;
        for (const Sink& sink : sinks) all.push_back(sink.port());
        return all;
    }
};

class CentralLoad : protected Sinks, public CentralTest {
  protected:
    CentralLoad() : CentralTest(withPorts(ports())) {}

    // One client's life: locks and releases names at random for a time.
    class User {
      public:
        User(CentralLoad& load, int number)
            : m_load(load), m_number(number), m_random(kSeed + static_cast<unsigned int>(number)) {}

        void live(std::chrono::milliseconds lifetime, bool isKilled) {
            m_load.connect(m_client);
            if (m_number < kListening) registerUser();
            m_load.m_ready.arrive_and_wait();
            const auto end = Clock::now() + lifetime;
            while (Clock::now() < end) oneRequest();
            if (isKilled) {
                ::closesocket(NySeClientAppAccess::socket(m_client));  // with whatever it holds
            } else {
                m_client.disconnect();
            }
        }

      private:
        void registerUser() {
            NySeUser user = named(std::to_string(m_number).c_str());
            EXPECT_GT(m_client.getPortClient(user), 0);
        }

        // Each goes out with a question behind it, so that its end is seen.
        void oneRequest() {
            const CString name(std::to_string(m_random() % kNames).c_str());
            switch (m_random() % 8) {
                case 0:
                    m_held = m_client.openConnection(name);
                    EXPECT_GE(m_held, 0);
                    break;
                case 1:
                    m_client.closeConnection(m_held);
                    break;
                case 2:
                case 3:
                case 4:
                    m_client.unLock(name);
                    break;
                default:
                    m_client.lock(name, m_random() % 2 == 0 ? 0x18 : 0x01);
            }
            EXPECT_TRUE(m_client.isAlive()) << "client " << m_number;
            ++m_load.m_requests;
        }

        CentralLoad& m_load;
        const int m_number;
        std::mt19937 m_random;
        NySeClientApp m_client;
        long m_held = -1;
    };

    std::latch m_ready{kClients + 1};
    std::atomic<long> m_requests = 0;
};

TEST_F(CentralLoad, LeavesNothingBehind) {
    std::printf("seed %u\n", kSeed);
    std::mt19937 random(kSeed);
    std::vector<std::thread> users;
    for (int i = 0; i < kClients; ++i) {
        const bool isKilled = i % (kClients / kKilled) == 0;
        const auto lifetime = isKilled ? duration() * (random() % 50) / 100 : duration();
        users.emplace_back(
            [this, i, lifetime, isKilled] { User(*this, i).live(lifetime, isKilled); });
    }
    m_ready.arrive_and_wait();
    const auto start = Clock::now();
    // Once nobody is killed any more: what a thread takes would hide what is lost.
    std::this_thread::sleep_until(start + duration() * 6 / 10);
    const SIZE_T warm = workingSet();
    std::this_thread::sleep_until(start + duration() * 95 / 100);
    const SIZE_T last = workingSet();
    for (std::thread& user : users) user.join();

    std::printf("%ld requests, working set %zu KiB and then %zu KiB, %zu notifications dropped\n",
                m_requests.load(), warm / 1024, last / 1024, server.pusher().dropped());
    EXPECT_LT(last, warm + kFlatBytes);
    connect(client);
    EXPECT_TRUE(eventually([this] { return server.GetNumConnections() == 1; }));
    expectNothingHeld(client);
    EXPECT_TRUE(userNames(client).empty());
    EXPECT_TRUE(server.tables().faults().empty());
}

}  // namespace
