#include "apps/central/CentralWorker.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "apps/central/CentralServer.h"
#include "apps/central/FrameReader.h"
#include "NyServer/framing/NySeReply.h"

namespace {

// Longer payloads than any request has; keeps one client from using up the server's memory.
constexpr LONG kLongestPayload = 16 * 1024 * 1024;

// A client whose connection stays idle is looked after this often, in steps of 100 ms.
constexpr int kIdleStepsBetweenChecks = 50;

}  // namespace

CentralWorker::CentralWorker(CentralServer& server)
    : m_server(server), m_sessionNumber(server.tables().newSessionNumber()) {}

bool CentralWorker::isShuttingDown() const {
    return m_server.GetShutDownFlag() != 0;
}

void CentralWorker::OnConnect() {
    const BOOL on = TRUE;
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
    NySe::succeeds([this] { serve(); });
    m_server.tables().endSession(m_sessionNumber);
}

void CentralWorker::serve() {
    FrameReader reader(*this, kLongestPayload);
    Frame frame;
    int idleSteps = 0;
    while (!isShuttingDown()) {
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
                std::fprintf(stderr, "session %ld announced %ld bytes for action %ld: closed\n",
                             m_sessionNumber, reader.announcedLength(), frame.action);
                return;
        }
    }
}

bool CentralWorker::answer(Frame& frame) {
    switch (frame.action) {
        case NySe::actionIsAlive:
            sendScalar<LONG>(NySe::kAliveAnswer);
            break;
        case NySe::actionGetVersion:
            sendScalar<double>(CentralServer::kVersion);
            break;
        case NySe::actionInitializeSchema:
            answerSchema(frame);
            break;
        case NySe::actionGetPortClient:
            answerPortClient(frame);
            break;
        case NySe::actionGetAllUser:
            answerAllUser();
            break;
        case NySe::actionDisconnect:
            return false;
        default:
            break;  // an unknown request is skipped: its payload has been read
    }
    return true;
}

void CentralWorker::answerSchema(Frame& frame) {
    LONG asked = NySe::schema2015;
    frame.payload.Read(&asked, sizeof asked);
    sendScalar<LONG>(std::min<LONG>(asked, NySe::schema2015));
}

void CentralWorker::answerPortClient(Frame& frame) {
    const std::unique_ptr<CObject> object(
        NySe::readReplyObject(frame.payload, RUNTIME_CLASS(NySeUser)));
    if (object == nullptr) {
        sendEmpty();
        return;
    }
    const NySeUser& user = static_cast<const NySeUser&>(*object);
    sendObject(m_server.tables().registerUser(user, m_sessionNumber));
}

void CentralWorker::answerAllUser() {
    sendObject(m_server.tables().users());
}

template <class Scalar>
void CentralWorker::sendScalar(Scalar value) {
    Send(reinterpret_cast<const char*>(&value), sizeof value, 0);
}

// Readers take the schema from the object's own description, so it is always the current one here.
void CentralWorker::sendObject(const CObject& object) {
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.writeObject(object);
    message.stopWriting();
    sendMessage(message);
}

void CentralWorker::sendEmpty() {
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.stopWriting();
    sendMessage(message);
}

void CentralWorker::sendMessage(NySeMemFile& message) {
    const int length = static_cast<int>(message.getLength());
    Send(reinterpret_cast<const char*>(message.getBuffer()), length, 0);
}
