// Requests of the client beside the calls that they cannot do without: the same bytes over the same
// connection to the same server.
#include <cstdio>
#include <functional>

#include "bench/wire/Parts.h"
#include "bench/wire/RawCalls.h"
#include "bench/wire/RawServer.h"
#include "bench/wire/Samples.h"
#include "tests/client/ClientTest.h"

namespace {

constexpr unsigned kMode = NySe::access1;

std::string requestBytes(NySe::ActionType action, const CString* name = nullptr,
                         const LONG* mode = nullptr) {
    NySeMemFile message;
    message.startWriteAction(action, NySe::schema2015);
    if (name != nullptr) message.writeString(*name);
    if (mode != nullptr) message.writeInteger(*mode);
    message.stopWriting();
    return std::string(reinterpret_cast<const char*>(message.getBuffer()),
                       static_cast<size_t>(message.getLength()));
}

struct Timed {
    bench::Samples alive, rawAlive, lock, rawLock, unlock, rawUnlock, pair, rawPair;
};

class RequestsBench {
  public:
    RequestsBench() {
        bench::require(m_client.connect(static_cast<int>(m_server.port()), "127.0.0.1", -1) == 0,
                       "no connection");
    }

    // One of each in turn, so that what else the machine does falls on all of them alike.
    void runOnce(Timed& timed) {
        timed.alive.time([this] { check(m_client.isAlive()); });
        timed.rawAlive.time([this] { check(exchangeAlive()); });
        timed.lock.time([this] { check(m_client.lock(m_name, kMode)); });
        timed.rawLock.time([this] { check(exchangeLock()); });
        timed.unlock.time([this] { check(m_client.unLock(m_name)); });
        check(exchangeAlive());  // once the server has taken the request before
        timed.rawUnlock.time([this] { check(sendUnlock()); });
        check(exchangeAlive());
        timed.pair.time([this] { check(m_client.unLock(m_name) && m_client.lock(m_name, kMode)); });
        timed.rawPair.time([this] { check(sendUnlock() && exchangeLock()); });
    }

  private:
    static void check(bool isDone) { bench::require(isDone, "a request failed"); }

    SOCKET socket() const { return NySeClientAppAccess::socket(m_client); }
    bool exchangeAlive() const { return bench::exchange(socket(), m_aliveBytes, sizeof(LONG)); }
    bool exchangeLock() const { return bench::exchange(socket(), m_lockBytes, 1); }
    bool sendUnlock() const { return bench::sendRaw(socket(), m_unlockBytes); }

    const CString m_name = _T("assembly/part-000001.drw");
    const LONG m_mode = kMode;
    const std::string m_aliveBytes = requestBytes(NySe::actionIsAlive);
    const std::string m_lockBytes = requestBytes(NySe::actionLock, &m_name, &m_mode);
    const std::string m_unlockBytes = requestBytes(NySe::actionUnLock, &m_name);
    peers::Peer m_server{&bench::answerRequests};
    NySeClientApp m_client;
};

void printRow(const char* name, const bench::Samples& samples, double floor, const char* goal) {
    std::printf("| %s | %.1f | %.3f | %s | %.0f |\n", name, samples.median(),
                samples.median() / floor, goal, samples.spread());
}

}  // namespace

void bench::runRequests(const WireOptions& options) {
    useOneCore();
    RequestsBench requests;
    Timed timed;
    for (const auto end = Clock::now() + options.seconds; Clock::now() < end;)
        requests.runOnce(timed);
    const double alone = timed.unlock.median() + timed.lock.median();
    std::printf("| request | median, us | x floor | goal | IQR %% |\n|---|---:|---:|---:|---:|\n");
    printRow("send, wait, recv of isAlive", timed.rawAlive, timed.rawAlive.median(), "-");
    printRow("`isAlive`", timed.alive, timed.rawAlive.median(), "1.10");
    printRow("send, wait, recv of lock", timed.rawLock, timed.rawLock.median(), "-");
    printRow("`lock`", timed.lock, timed.rawLock.median(), "1.10");
    printRow("send of unLock", timed.rawUnlock, timed.rawUnlock.median(), "-");
    printRow("`unLock`", timed.unlock, timed.rawUnlock.median(), "-");
    printRow("send of unLock, then send, wait, recv of lock", timed.rawPair,
             timed.rawUnlock.median() + timed.rawLock.median(), "-");
    printRow("`unLock`, then `lock`; floor: the two alone", timed.pair, alone, "1.15");
    std::printf("\n%zu of each, in turn.\n", timed.alive.count());
}
