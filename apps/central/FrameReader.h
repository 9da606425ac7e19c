// FrameReader: one request after the other from a connection.
#pragma once

#include <chrono>

#include "NyServer/framing/NySeMemFile.h"

class CentralWorker;

// One request as it came: its action and, for all but the bare codes, its payload, at its start.
struct Frame {
    LONG action = NySe::noAction;
    CMemFile payload;
};

// Reads for one worker, on the worker's thread. It waits in short steps and gives up when the
// worker must end.
class FrameReader {
  public:
    enum class Result { request, idle, closed, absurd };

    // A payload announced longer than `longestPayload` bytes is absurd.
    FrameReader(CentralWorker& worker, LONG longestPayload)
        : m_worker(worker), m_longestPayload(longestPayload) {}

    // request: `frame` holds one. idle: nothing came within 100 ms. closed: the peer has gone or
    // took longer than the worker's framePatience() over one request, or the worker must end.
    // absurd: the announced length in announcedLength() is not to be believed; the stream cannot be
    // read on.
    Result read(Frame& frame);
    LONG announcedLength() const { return m_announcedLength; }

  private:
    bool receiveAll(void* bytes, int count);
    int receiveSome(char* buffer, int count);
    Result readPayload(Frame& frame);

    CentralWorker& m_worker;
    const LONG m_longestPayload;
    LONG m_announcedLength = 0;
    std::chrono::steady_clock::time_point m_end;  // of the patience with the present request
};
