#include "apps/central/CentralWorker.h"

#include <mstcpip.h>

#include "apps/central/FrameReader.h"
#include "apps/central/Requests.h"
#include "NyServer/socket/TimedConnect.h"

namespace {

// Longer payloads than any request has; keeps one client from using up the server's memory.
constexpr LONG kLongestPayload = 16 * 1024 * 1024;

// A client whose connection stays idle is looked after this often, in steps of 100 ms.
constexpr int kIdleStepsBetweenChecks = 50;

// A client that takes no byte of its answer for so many steps of 100 ms is given up.
constexpr int kAnswerPatienceSteps = 300;
constexpr long kAnswerStep = 100'000;  // microseconds

}  // namespace

bool CentralWorker::mustEnd() const {
    return m_server.GetShutDownFlag() != 0 || m_server.lostSessions().contains(m_session);
}

std::chrono::milliseconds CentralWorker::framePatience() const {
    return m_server.framePatience();
}

void CentralWorker::OnConnect() {
    const BOOL on = TRUE;
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
    noticeDeadPeers();
    m_session = m_server.tables().beginSession(m_peerAddress.sin_addr.s_addr);
    NySe::succeeds([this] { serve(); });
    NySe::succeeds([this] { m_server.tables().endSession(m_session); });
    m_server.lostSessions().forget(m_session);
    NySe::succeeds([this] { m_server.events().add(name() + " has ended"); });
}

void CentralWorker::OnMaxConnect() {
    m_server.events().add("a connection beyond the most sessions is closed");
}

std::string CentralWorker::name() const {
    return "session " + std::to_string(m_session);
}

// A machine that goes without a word leaves a connection that looks idle. The system probes it, and
// its end is then found as any other.
void CentralWorker::noticeDeadPeers() {
    tcp_keepalive probing{1, 10'000, 1'000};  // on; ms of idleness before the first, between them
    DWORD returned = 0;
    ::WSAIoctl(m_socket, SIO_KEEPALIVE_VALS, &probing, sizeof probing, nullptr, 0, &returned,
               nullptr, nullptr);
}

void CentralWorker::serve() {
    FrameReader reader(*this, kLongestPayload);
    Frame frame;
    int idleSteps = 0;
    while (!mustEnd()) {
        switch (reader.read(frame)) {
            case FrameReader::Result::request:
                if (!answer(frame)) return;
                break;
            case FrameReader::Result::idle:
                if (++idleSteps % kIdleStepsBetweenChecks == 0 && IsConnected() == 0) return;
                break;
            case FrameReader::Result::closed:
                return;
            case FrameReader::Result::absurd:
                m_server.events().warn(
                    name() + " announced " + std::to_string(reader.announcedLength()) +
                    " bytes for action " + std::to_string(frame.action) + ": closed");
                return;
        }
    }
}

bool CentralWorker::answer(Frame& frame) {
    if (frame.action == NySe::actionDisconnect) return false;
    Reply reply;
    answerRequest(frame.action, {m_server, m_session, frame.payload, reply});
    return sendWhole(reply.bytes());
}

// A client that does not take its answer is given up: behind a part of an answer nothing could be
// understood.
bool CentralWorker::sendWhole(const std::string& bytes) {
    if (bytes.empty()) return true;
    SetBlockingMode(1);
    const bool isSent = sendInSteps(bytes);
    SetBlockingMode(0);
    return isSent;
}

// A blocking send could hold up the server's end for as long as its time-out.
bool CentralWorker::sendInSteps(const std::string& bytes) {
    size_t sent = 0;
    for (int stepsInVain = 0; sent < bytes.size() && stepsInVain < kAnswerPatienceSteps;) {
        const int count = Send(bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count > 0) {
            sent += static_cast<size_t>(count);
            stepsInVain = 0;
            continue;
        }
        if (::WSAGetLastError() != WSAEWOULDBLOCK || mustEnd()) break;
        if (port::waitFor(m_socket, port::Wanted::writable, 0, kAnswerStep) != 1) ++stepsInVain;
    }
    return sent == bytes.size();
}
