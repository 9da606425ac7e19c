// 200 clients at once on the central server's program, of which 20 are killed: nothing is left of
// anybody, every request is answered, the program's memory stays flat. NY_LOAD_SECONDS says how
// long it lasts: 10 unless set.
#include <cstdlib>
#include <random>
#include <thread>

#include "tests/apps/CentralProgram.h"
#include "tests/apps/CentralTest.h"
#include "tests/apps/ListenerRow.h"
#include "tests/support/Gate.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int kClients = 200;
constexpr int kKilledPrograms = 4;                         // whole programs, ended from outside
constexpr int kStarting = kClients + kKilledPrograms + 1;  // threads that begin together
constexpr int kKilledConnections = 16;  // of which each leaves in one of three ways
constexpr int kListening = 10;
constexpr int kNames = 1'000;
constexpr unsigned int kSeed = 20'150'201;
// What the working set may grow by in the second half: pages that come and go, and so much for each
// request, which is less than the smallest block of memory.
constexpr SIZE_T kFlatBytes = 1024 * 1024;
constexpr SIZE_T kBytesPerRequest = 8;
constexpr long kRequestsPerClient = 1;

milliseconds duration() {
    const char* seconds = std::getenv("NY_LOAD_SECONDS");
    return std::chrono::seconds(seconds == nullptr ? 10 : std::atoi(seconds));
}

std::string finished(NySeMemFile& message) {
    message.stopWriting();
    return std::string(reinterpret_cast<const char*>(message.getBuffer()),
                       static_cast<size_t>(message.getLength()));
}

// A request of these values.
template <class... Values>
std::string requestOf(NySe::ActionType action, const Values&... values) {
    NySeMemFile message;
    message.startWriteAction(action, NySe::schema2015);
    ((*message.getArchive() << values), ...);
    return finished(message);
}

std::string registration() {
    NySeUser user;
    user.setStrUserName("load");
    user.setSchema(NySe::schema2015);
    NySeMemFile message;
    message.startWriteAction(NySe::actionGetPortClient, NySe::schema2015);
    message.writeObject(user);
    return finished(message);
}

// What the clients have seen, added up.
struct Tally {
    std::atomic<long> requests = 0;
    std::atomic<long> unanswered = 0;
    std::atomic<long> wrong = 0;  // answers that no server gives
};

enum class Leaving { byGoodBye, byReset, inMidRequest, withAnAnswerOutstanding };

// One client, which locks and releases names at random.
class LoadClient {
  public:
    LoadClient(unsigned int seed, Tally& tally) : m_random(seed), m_tally(tally) {}

    void enter(int port, bool listens) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        address.sin_port = ::htons(static_cast<unsigned short>(port));
        m_socket = NySe::UniqueSocket(::socket(AF_INET, SOCK_STREAM, 0));
        ASSERT_EQ(0, ::connect(socket(), reinterpret_cast<sockaddr*>(&address), sizeof address));
        const DWORD patience = 20'000;
        ::setsockopt(socket(), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&patience),
                     sizeof patience);
        if (listens) enterUser();
    }

    void work(Clock::time_point end) {
        while (Clock::now() < end) {
            if (oneRequest()) continue;
            ++m_tally.wrong;
            return;
        }
    }

    void leave(Leaving how) {
        const std::string lock = requestOf(NySe::actionLock, CString("last"), LONG{0});
        switch (how) {
            case Leaving::byGoodBye:
                send(wireOf<LONG>(NySe::actionDisconnect));
                break;
            case Leaving::byReset: {
                // In some stacks this, too, is an orderly end.
                const linger none{1, 0};
                ::setsockopt(socket(), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&none),
                             sizeof none);
                break;
            }
            case Leaving::inMidRequest:
                send(lock.substr(0, lock.size() / 2));
                break;
            case Leaving::withAnAnswerOutstanding:
                send(lock + requestOf(NySe::actionGetLock));
        }
        m_socket.reset();
    }

  private:
    SOCKET socket() const { return m_socket.get(); }

    void enterUser() {
        const auto length = expectAnswer<LONG>(registration());
        ASSERT_TRUE(length && *length > 0);
        std::string user(static_cast<size_t>(*length), '\0');
        ASSERT_EQ(*length, ::recv(socket(), user.data(), *length, MSG_WAITALL));
    }

    bool oneRequest() {
        const CString name(std::to_string(m_random() % kNames).c_str());
        switch (m_random() % 8) {
            case 0:
                return open(name);
            case 1:
                return close();
            case 2:
            case 3:
            case 4:
                return expectAnswer<LONG>(requestOf(NySe::actionUnLock, name) + m_isAlive) ==
                       NySe::kAliveAnswer;
            default:
                const LONG mode = m_random() % 2 == 0 ? 0x18 : 0x01;
                const auto granted = expectAnswer<BYTE>(requestOf(NySe::actionLock, name, mode));
                return granted && *granted <= 1;
        }
    }

    bool open(const CString& name) {
        const auto id = expectAnswer<LONG>(requestOf(NySe::actionOpenConnection, name));
        if (id) m_open.push_back(*id);
        return id && *id >= 0;
    }

    bool close() {
        if (m_open.empty()) return true;
        const LONG id = m_open.back();
        m_open.pop_back();
        return expectAnswer<LONG>(requestOf(NySe::actionCloseConnection, id) + m_isAlive) ==
               NySe::kAliveAnswer;
    }

    void send(const std::string& bytes) {
        ::send(socket(), bytes.data(), static_cast<int>(bytes.size()), 0);
    }

    template <class Scalar>
    std::optional<Scalar> expectAnswer(const std::string& request) {
        send(request);
        ++m_tally.requests;
        Scalar answer{};
        const int count =
            ::recv(socket(), reinterpret_cast<char*>(&answer), sizeof answer, MSG_WAITALL);
        if (count == sizeof answer) return answer;
        ++m_tally.unanswered;
        return std::nullopt;
    }

    std::mt19937 m_random;
    Tally& m_tally;
    NySe::UniqueSocket m_socket;
    std::vector<LONG> m_open;
    const std::string m_isAlive = requestOf(NySe::actionIsAlive);
};

// nyctl, which holds a lock and a connection until it is killed.
class KilledProgram {
  public:
    KilledProgram(int port, int number) {
        Pipe::keepToOneself(m_input.writing);
        Pipe::keepToOneself(m_output.reading);
        const std::wstring digits = std::to_wstring(number);
        m_process = std::make_unique<ChildProcess>(
            L"nyctl.exe",
            L"--server 127.0.0.1:" + std::to_wstring(port) + L" --user killed" + digits + L" shell",
            m_input.reading.get(), m_output.writing.get(), m_output.writing.get());
        m_output.writing.reset();
        say("lock killed" + std::to_string(number) + "\nopen killed\n");
        EXPECT_TRUE(isTold("id: "));
    }

    // While it waits for the next line. Killed within a call to a socket, its end of the connection
    // would now and then stay open for good, held by Wine's own server, and nobody could tell that
    // it has gone; those who leave in the midst of a request do so by their connections.
    void kill() { m_process->kill(); }

  private:
    void say(const std::string& lines) {
        DWORD written = 0;
        ::WriteFile(m_input.writing.get(), lines.data(), static_cast<DWORD>(lines.size()), &written,
                    nullptr);
    }

    bool isTold(const std::string& text) {
        std::string told;
        char piece[256];
        DWORD count = 0;
        while (told.find(text) == std::string::npos &&
               ::ReadFile(m_output.reading.get(), piece, sizeof piece, &count, nullptr))
            told.append(piece, count);
        return told.find(text) != std::string::npos;
    }

    Pipe m_input;
    Pipe m_output;
    std::unique_ptr<ChildProcess> m_process;
};

class CentralLoad : public CentralTest {
  protected:
    void SetUp() override {
        ASSERT_EQ(0, client.connect(program.port(), "127.0.0.1", -1));
        client.initializeSchema();
    }

    // Its start; killed at one of the moments of the first half.
    void startPrograms() {
        for (int i = 0; i < kKilledPrograms; ++i)
            m_programs.push_back(std::make_unique<KilledProgram>(program.port(), i));
    }

    void startClients() {
        for (int i = 0; i < kClients; ++i) {
            const bool isKilled = i % (kClients / kKilledConnections) == 0 &&
                                  i / (kClients / kKilledConnections) < kKilledConnections;
            const auto how =
                isKilled ? static_cast<Leaving>(1 + m_killed++ % 3) : Leaving::byGoodBye;
            const auto lifetime = isKilled ? someMoment() : duration();
            threads.emplace_back([this, i, how, lifetime] { live(i, how, lifetime); });
        }
        for (auto& one : m_programs) {
            threads.emplace_back([this, &one, moment = someMoment()] {
                m_ready.meet(kStarting);
                std::this_thread::sleep_for(moment);
                one->kill();
            });
        }
        m_ready.meet(kStarting);
    }

    std::string events() {
        const CString list = client.getEventListFromEventViewer(1000);
        return textOf(list);
    }

    static long countOf(const std::string& part, const std::string& text) {
        long count = 0;
        for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
            ++count;
        return count;
    }

    void expectAllLeft() {
        const long sessions = kClients + kKilledPrograms;
        const auto ended = [this] { return countOf(" has ended\n", events() + '\n'); };
        EXPECT_TRUE(eventually([&] { return ended() >= sessions; }));
        EXPECT_EQ(sessions, ended());
        expectNothingHeld(client);
        EXPECT_TRUE(userNames(client).empty());
    }

    void expectCoherentAndStops() {
        client.verifyCoherancy();
        client.shutDownServer();
        EXPECT_TRUE(program.process().hasEnded(std::chrono::seconds(30)));
        EXPECT_EQ(0u, program.process().exitCode());
        EXPECT_EQ(0, countOf("incoherent", program.errors())) << program.errors();
        EXPECT_EQ(0, countOf("its user is gone", program.errors())) << program.errors();
        EXPECT_EQ(0, countOf("is too slow", program.errors())) << program.errors();
    }

    ListenerRow listeners{kListening + kKilledPrograms};
    CentralProgram program{L"--probe-seconds 1 --ports " + listeners.range()};
    Tally tally;
    std::vector<std::thread> threads;

  private:
    void live(int number, Leaving how, milliseconds lifetime) {
        LoadClient one(kSeed + static_cast<unsigned int>(number), tally);
        one.enter(program.port(), number < kListening);
        m_ready.meet(kStarting);
        one.work(Clock::now() + lifetime);
        one.leave(how);
    }

    milliseconds someMoment() { return duration() * (m_random() % 50) / 100; }

    std::mt19937 m_random{kSeed};
    unsigned int m_killed = 0;
    std::vector<std::unique_ptr<KilledProgram>> m_programs;
    Gate m_ready;
};

TEST_F(CentralLoad, LeavesNothingBehind) {
    startPrograms();
    startClients();
    const auto start = Clock::now();
    // Once nobody is killed any more: what a thread takes would hide what is lost.
    std::this_thread::sleep_until(start + duration() / 2);
    const SIZE_T warm = program.process().workingSet();
    const long requestsBefore = tally.requests;
    std::this_thread::sleep_until(start + duration() * 95 / 100);
    const SIZE_T last = program.process().workingSet();
    const long requestsMeanwhile = tally.requests - requestsBefore;
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(0, tally.unanswered);
    EXPECT_EQ(0, tally.wrong);
    EXPECT_GT(tally.requests, kClients * kRequestsPerClient);
    EXPECT_GT(warm, 0u);
    EXPECT_LT(last, warm + kFlatBytes + kBytesPerRequest * static_cast<SIZE_T>(requestsMeanwhile));
    EXPECT_GT(listeners.probes(), kListening);
    expectAllLeft();
    expectCoherentAndStops();
    std::printf(
        "seed %u: %ld requests in %lld s, %ld unanswered; the program's working set %zu KiB and "
        "%ld requests later %zu KiB; %ld notifications and %ld probes received; the program says: "
        "%s",
        kSeed, tally.requests.load(), static_cast<long long>(duration().count() / 1000),
        tally.unanswered.load(), warm / 1024, requestsMeanwhile, last / 1024, listeners.frames(),
        listeners.probes(), program.output().c_str());
}

}  // namespace
