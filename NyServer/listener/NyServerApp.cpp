#include "NyServer/listener/NyServerApp.h"

#include <cmath>
#include <new>

#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/host/NyFctIpUtil.h"
#include "NyServer/listener/NotificationQueue.h"
#include "NyServer/listener/NyServerThreadApp.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

constexpr int kListenQueue = 5;
constexpr DWORD kTick = 50;  // milliseconds
constexpr double kShare = 0.9;

// Returns a value below 1 for limits that are too large for the result.
long shareOfPostMessageLimit(DWORD systemLimit) {
    return static_cast<long>(static_cast<long long>(std::floor(systemLimit * kShare)));
}

}  // namespace

NyServerApp::NyServerApp() = default;

NyServerApp::~NyServerApp() {
    endConnections();
}

// Stops accepting first: otherwise peers that reconnect all the time could prevent an idle moment.
void NyServerApp::endConnections() {
    SetShutDownFlag(1);
    StopAccept();
    while (!RunDownIfIdle()) port::sleep(kTick);
    replaceQueue(nullptr);
}

int NyServerApp::Start() {
    if (IsAccepting()) return OnError(UTE_ERROR);
    const int result = ConnectToPort(m_portNumber, kListenQueue, AF_INET, htonl(INADDR_ANY));
    return result != UTE_SUCCESS ? result : StartAccept();
}

CUT_WSThread* NyServerApp::CreateInstance() {
    return new (std::nothrow) NyServerThreadApp(this);
}

void NyServerApp::ReleaseInstance(CUT_WSThread* worker) {
    delete worker;
}

CString NyServerApp::_getIpAdress() {
    return NyFctIpUtil::_getIpAddress();
}

CString NyServerApp::_getIpAdressByName(const CString& name) {
    return NyFctIpUtil::_getIpAddressFromHostName(name);
}

// Under the lock, so that no thread uses the previous window object after the return.
void NyServerApp::setAppWnd(CWnd* window) {
    const ThreadListLock lock(*this);
    m_appWnd.store(window, std::memory_order_relaxed);
    resetPostMsgCount();
}

bool NyServerApp::setReceiver(Receiver receiver) {
    std::unique_ptr<NotificationQueue> next;
    const bool isReady = NySe::resultOr(false, [&] {
        if (!receiver) return true;
        next = std::make_unique<NotificationQueue>(
            std::move(receiver), [this](const NotificationQueue& queue) { countConsumed(queue); });
        return next->start();
    });
    if (!isReady) return false;
    const auto previous = replaceQueue(std::move(next));
    if (previous) previous->discard();
    return true;
}

// The caller destroys the previous queue, without the lock: the destructor waits for the receiver,
// which may need the lock.
std::unique_ptr<NotificationQueue> NyServerApp::replaceQueue(
    std::unique_ptr<NotificationQueue> next) {
    const ThreadListLock lock(*this);
    if (m_queue || next) resetPostMsgCount();
    m_queue.swap(next);
    return next;
}

void NyServerApp::postMessageToMainFrame(unsigned int message, CMemFile& file) {
    if (!putIntoQueue(file)) postToWindow(message, file);
}

// Returns false if there is no receiver. The lock is held from the look at the queue to counting:
// otherwise a message for a replaced receiver would be counted for the next one.
bool NyServerApp::putIntoQueue(CMemFile& file) {
    const ThreadListLock lock(*this);
    if (!m_queue) return false;
    if (m_queue->put(file)) increasePostMsgCount();
    return true;
}

void NyServerApp::countConsumed(const NotificationQueue& queue) {
    const ThreadListLock lock(*this);
    if (&queue == m_queue.get()) decreasePostMsgCount();
}

void NyServerApp::increasePostMsgCount() {
    const ThreadListLock lock(*this);
    ++m_postMsgCount;
    if (m_postMsgCount > getPostMessageLimit()) stopThread(true);
}

void NyServerApp::decreasePostMsgCount() {
    const ThreadListLock lock(*this);
    --m_postMsgCount;
    if (m_postMsgCount < 1) resetPostMsgCount();
}

void NyServerApp::resetPostMsgCount() {
    m_postMsgCount = 0;
    m_emptyMsgCount = 0;
    stopThread(false);
}

int NyServerApp::getPostMsgCount() {
    const ThreadListLock lock(*this);
    return m_postMsgCount;
}

void NyServerApp::stopThread(bool pause) {
    for (const ThreadListEntry* entry = ThreadListFirst(); entry; entry = entry->next) {
        auto* const worker = dynamic_cast<NyServerThreadApp*>(entry->worker);
        if (worker) worker->setPaused(pause);
    }
}

long NyServerApp::getPostMessageLimit() {
    if (m_postMsgLimit <= 0) m_postMsgLimit = shareOfPostMessageLimit(systemPostMessageLimit());
    return m_postMsgLimit;
}
