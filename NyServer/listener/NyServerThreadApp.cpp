#include "NyServer/listener/NyServerThreadApp.h"

#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/framing/NySeNotification.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

constexpr long kRoundMilliseconds = 100;
constexpr int kIdleRoundsWithoutCheck = 50;
constexpr int kActionTimeOut = 1000;  // milliseconds
constexpr int kLengthTimeOut = NySe::kScalarTimeOut * 1000;
constexpr UINT kGrowBytes = 1024;

}  // namespace

NyServerThreadApp::NyServerThreadApp(NyServerApp* server)
    : m_server(server), m_currentAction(NySe::noAction), m_isPaused(false) {
    port::useNormalPriority();
}

NyServerThreadApp::~NyServerThreadApp() = default;

void NyServerThreadApp::setPaused(bool isPaused) {
    if (isPaused) m_released.reset();
    m_isPaused.store(isPaused, std::memory_order_relaxed);
    if (!isPaused) m_released.set();
}

// Idle rounds are counted from the last check of the peer, not from the last message.
void NyServerThreadApp::OnConnect() {
    int idleRounds = 0;
    do {
        const Round round = runRound();
        if (round == Round::refused) return;
        if (round == Round::idle) ++idleRounds;
        const bool isCheckDue = idleRounds > kIdleRoundsWithoutCheck;
        if ((isCheckDue || round == Round::unclear) && !IsConnected()) return;
        if (isCheckDue) idleRounds = 0;
    } while (m_server->GetShutDownFlag() == 0);
}

NyServerThreadApp::Round NyServerThreadApp::runRound() {
    return awaitMessage() ? receiveMessage() : Round::idle;
}

bool NyServerThreadApp::awaitMessage() {
    if (WaitForReceive(0, kRoundMilliseconds * 1000) != UTE_SUCCESS) return false;
    return !isPaused() || awaitRelease();
}

// If data is available, waiting for the socket takes no time; then this wait is the length of a
// round.
bool NyServerThreadApp::awaitRelease() {
    m_released.wait(kRoundMilliseconds);
    return !isPaused();
}

// An action that arrives incomplete is handled with the bytes that arrived.
NyServerThreadApp::Round NyServerThreadApp::receiveMessage() {
    int action = 0;
    const int received = collect(action, 0, kActionTimeOut);
    if (received <= 0) return action == 0 ? Round::idle : Round::unclear;
    m_currentAction = action;
    const bool isTaken = handleMessage();
    m_currentAction = NySe::noAction;
    return isTaken ? Round::served : Round::refused;
}

// A header may arrive in pieces. `firstTimeOut`, in seconds, applies to the first receive;
// `timeOut`, in milliseconds, to all of them together.
int NyServerThreadApp::collect(int& value, int firstTimeOut, int timeOut) {
    const ULONGLONG deadline = port::milliseconds() + static_cast<ULONGLONG>(timeOut);
    return NySe::collect(value, [&](char* buffer, int count) {
        if (count == int{sizeof value}) return Receive(buffer, count, firstTimeOut);
        return awaitRest(deadline) ? Receive(buffer, count, 0) : 0;
    });
}

// Data that has arrived is received after the deadline, too.
bool NyServerThreadApp::awaitRest(ULONGLONG deadline) {
    const ULONGLONG now = port::milliseconds();
    const long left = now < deadline ? static_cast<long>(deadline - now) : 0;
    return WaitForReceive(left / 1000, left % 1000 * 1000) == UTE_SUCCESS;
}

// Returns false to end the connection.
bool NyServerThreadApp::handleMessage() {
    bool isTaken = true;
    NySe::dropArchiveErrors([&] {
        CMemFile body(kGrowBytes);
        isTaken = receiveBody(body);
        if (isTaken) dispatch(body);
    });
    return isTaken;
}

// Returns false if the body is too long. An incomplete body is not a failure: the message is
// handled with the bytes that arrived.
bool NyServerThreadApp::receiveBody(CMemFile& body) {
    int length = 0;
    if (collect(length, NySe::kScalarTimeOut, kLengthTimeOut) < int{sizeof length}) return true;
    if (length > 0 && static_cast<unsigned int>(length) > m_server->getLongestBody()) return false;
    NySe::receiveBody(body, length, [this](char* buffer, int count) {
        return Receive(buffer, count, NySe::kChunkTimeOut);
    });
    return true;
}

void NyServerThreadApp::dispatch(CMemFile& body) {
    if (m_currentAction == NySe::actionIsAlive)
        answerProbe();
    else if (NySe::isNotification(m_currentAction))
        forward(body);
}

void NyServerThreadApp::answerProbe() {
    const LONG answer = NySe::kAliveAnswer;
    Send(reinterpret_cast<const char*>(&answer), sizeof answer, 0);
}

void NyServerThreadApp::forward(CMemFile& body) {
    NySeMemFile message;
    NySe::wrapNotification(message, static_cast<NySe::ActionType>(m_currentAction), body);
    m_server->postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, message);
}
