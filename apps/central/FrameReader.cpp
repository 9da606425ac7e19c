#include "apps/central/FrameReader.h"

#include "apps/central/CentralWorker.h"
#include "NyServer/framing/NySeReply.h"

namespace {

constexpr long kStepMicroseconds = 100'000;

bool isBare(LONG action) {
    return action == NySe::actionGetVersion || action == NySe::actionDisconnect;
}

}  // namespace

FrameReader::Result FrameReader::read(Frame& frame) {
    if (m_worker.WaitForReceive(0, kStepMicroseconds) != 0) return Result::idle;
    m_end = std::chrono::steady_clock::now() + m_worker.framePatience();
    frame.payload.SetLength(0);
    if (!receiveAll(&frame.action, sizeof frame.action)) return Result::closed;
    return isBare(frame.action) ? Result::request : readPayload(frame);
}

FrameReader::Result FrameReader::readPayload(Frame& frame) {
    if (!receiveAll(&m_announcedLength, sizeof m_announcedLength)) return Result::closed;
    if (m_announcedLength < 0 || m_announcedLength > m_longestPayload) return Result::absurd;
    const LONG missing =
        NySe::receiveBody(frame.payload, m_announcedLength,
                          [this](char* buffer, int count) { return receiveSome(buffer, count); });
    return missing == 0 ? Result::request : Result::closed;
}

bool FrameReader::receiveAll(void* bytes, int count) {
    char* target = static_cast<char*>(bytes);
    while (count > 0) {
        const int received = receiveSome(target, count);
        if (received < 1) return false;
        target += received;
        count -= received;
    }
    return true;
}

int FrameReader::receiveSome(char* buffer, int count) {
    while (std::chrono::steady_clock::now() < m_end && !m_worker.mustEnd()) {
        if (m_worker.WaitForReceive(0, kStepMicroseconds) == 0) {
            return m_worker.Receive(buffer, count, 0);
        }
    }
    return 0;
}
