#include "NyServer/listener/NyServerThreadApp.h"

#include "NyServer/framing/NySeNotification.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

constexpr long kRoundMilliseconds = 100;
constexpr int kIdleRoundsWithoutCheck = 50;
constexpr UINT kGrowBytes = 1024;

}  // namespace

NyServerThreadApp::NyServerThreadApp(NyServerApp* server)
    : m_server(server), m_currentAction(NySe::noAction), m_isPaused(false) {
    ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_NORMAL);
}

// The idle rounds are those since the last check of the peer, whatever messages came between.
void NyServerThreadApp::OnConnect() {
    int idleRounds = 0;
    do {
        const Round round = runRound();
        if (round == Round::idle) ++idleRounds;
        const bool isCheckDue = idleRounds > kIdleRoundsWithoutCheck;
        if ((isCheckDue || round == Round::unclear) && !IsConnected()) return;
        if (isCheckDue) idleRounds = 0;
    } while (m_server->GetShutDownFlag() == 0);
}

NyServerThreadApp::Round NyServerThreadApp::runRound() {
    return awaitMessage() ? receiveMessage() : Round::idle;
}

// A paused worker does not wait for its socket: with data there, that wait takes no time.
bool NyServerThreadApp::awaitMessage() {
    if (isPaused()) {
        ::Sleep(kRoundMilliseconds);
        return false;
    }
    return WaitForReceive(0, kRoundMilliseconds * 1000) == UTE_SUCCESS && !isPaused();
}

// An action of which fewer bytes come is taken with what came.
NyServerThreadApp::Round NyServerThreadApp::receiveMessage() {
    int action = 0;
    const int received = Receive(reinterpret_cast<char*>(&action), sizeof action, 0);
    if (received <= 0) return action == 0 ? Round::idle : Round::unclear;
    m_currentAction = action;
    handleMessage();
    m_currentAction = NySe::noAction;
    return Round::served;
}

void NyServerThreadApp::handleMessage() try {
    CMemFile body(kGrowBytes);
    receiveBody(body);
    dispatch(body);
} catch (CFileException* error) {
    error->Delete();
} catch (CArchiveException* error) {
    error->Delete();
}

// Whether all of it came does not matter: the message is handled with what did.
void NyServerThreadApp::receiveBody(CMemFile& body) {
    NySe::receiveMessage(body, [this](char* buffer, int count, int timeOut) {
        return Receive(buffer, count, timeOut);
    });
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
