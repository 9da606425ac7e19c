#include "apps/central/CentralServer.h"

#include <new>

#include "apps/central/CentralWorker.h"
#include "apps/central/Reply.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

constexpr int kListenQueue = 128;

// A listener that reads loses nothing when one client leaves.
static_assert(TableLimits().notificationsOfLeaving() < PushLimits().queuedNotifications);
static_assert(TableLimits().bytesOfLeaving() < PushLimits().queuedBytes);

// Every table fits into one answer.
static_assert(TableLimits().bytesOfLocks() < Reply::kLongestMessage);
static_assert(TableLimits().bytesOfConnections() < Reply::kLongestMessage);
static_assert(TableLimits().bytesOfUsers() < Reply::kLongestMessage);

}  // namespace

CentralServer::CentralServer(CentralSettings settings)
    : m_settings(std::move(settings)),
      m_pusher(m_settings.push, m_events, [this](LONG session) { m_lostSessions.add(session); }),
      m_tables(m_settings.ports, m_pusher, m_settings.tables) {
    SetMaxConnections(m_settings.maxSessions);
}

void CentralServer::stop() {
    SetShutDownFlag(1);
    StopAccept();
    while (!RunDownIfIdle()) ::Sleep(10);
    m_pusher.stop();
}

int CentralServer::start(unsigned long address, unsigned short port) {
    const int result = ConnectToPort(port, kListenQueue, AF_INET, address);
    if (result != UTE_SUCCESS) return result;
    SetPort(GetBoundPort());
    m_events.add("listening on port " + std::to_string(GetPort()));
    return StartAccept();
}

CUT_WSThread* CentralServer::CreateInstance() {
    return new (std::nothrow) CentralWorker(*this);
}

void CentralServer::ReleaseInstance(CUT_WSThread* worker) {
    delete worker;
}
