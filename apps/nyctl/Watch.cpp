#include "apps/nyctl/Watch.h"

#include "apps/common/StopRequest.h"
#include "apps/nyctl/Notice.h"
#include "apps/nyctl/WatchWindow.h"

namespace {

// How often the server is looked for and the time is looked at, in milliseconds.
constexpr DWORD kRound = 100;

bool dispatchOne() {
    MSG message;
    if (!::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return false;
    ::DispatchMessageW(&message);
    return true;
}

void awaitMessage() {
    const HANDLE stop = StopRequest::event();
    ::MsgWaitForMultipleObjects(1, &stop, FALSE, kRound, QS_ALLINPUT);
}

}  // namespace

ExitStatus Watch::run() {
    const StopRequest stopRequest;
    NyServerApp* const listener = m_context.session.listen();
    if (listener == nullptr) {
        const ExitStatus status = ifAnswered(m_context, exitNo);
        if (status == exitNo) Output::complain("the server gives no port that is free here");
        return status;
    }
    Output::note("watching at port " + std::to_string(listener->getPortNumber()));
    const ExitStatus status = follow(*listener);
    if (status == exitNoAnswer) {
        Output::complain(m_context.session.server() + " has gone away");
        m_context.session.close();
    }
    return status;
}

// What came before the server went away is shown first.
ExitStatus Watch::follow(NyServerApp& listener) {
    const WatchWindow window(
        listener, [this](NySe::ActionType action, CMemFile& payload) { show(action, payload); });
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(m_limits.time);
    for (;;) {
        if (m_limits.hasCount() && m_seen >= m_limits.count) return exitYes;
        if (StopRequest::isMade()) return exitYes;
        if (m_limits.hasTime() && Clock::now() >= end)
            return m_limits.hasCount() ? exitTimeOut : exitYes;
        if (dispatchOne()) continue;
        if (!m_context.client().IsConnected()) return exitNoAnswer;
        awaitMessage();
    }
}

void Watch::show(NySe::ActionType action, CMemFile& payload) {
    ++m_seen;
    const Notice notice = readNotice(action, payload);
    m_context.output.next(notice.line, notice.record);
}
