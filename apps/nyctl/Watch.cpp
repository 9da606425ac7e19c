#include "apps/nyctl/Watch.h"

#include "apps/common/StopRequest.h"
#include "apps/nyctl/Notice.h"
#include "apps/nyctl/WatchWindow.h"

namespace apps::nyctl {

namespace {

// How often the server is looked for and the time is looked at, in milliseconds.
constexpr DWORD kRound = 100;

void awaitMessage() {
    const HANDLE stop = StopRequest::event();
    ::MsgWaitForMultipleObjects(1, &stop, FALSE, kRound, QS_ALLINPUT);
}

}  // namespace

ExitStatus Watch::run() {
    const StopRequest stopRequest;
    const ExitStatus status = follow();
    if (status == exitNo) Output::complain("the server gives no port that is free here");
    // Not earlier: the window uses the listener, which goes with the connection.
    return status == exitNoAnswer ? noAnswer(m_context) : status;
}

// The window is there before the listener, so that nothing is missed from the registration on.
ExitStatus Watch::follow() {
    NyServerApp& listener = m_context.session.listener();
    const WatchWindow window(
        listener, [this](NySe::ActionType action, CMemFile& payload) { show(action, payload); });
    if (!m_context.session.listen()) return m_context.client().isAlive() ? exitNo : exitNoAnswer;
    Output::note("watching at port " + std::to_string(listener.getPortNumber()));
    m_end = Clock::now() + std::chrono::duration_cast<Clock::duration>(m_limits.time);
    for (;;) {
        if (const auto end = outcome()) return *end;
        if (dispatchNextMessage()) continue;
        // Only now: what came before the server went away is shown first.
        if (!m_context.client().IsConnected()) {
            Output::complain("the server has gone away");
            return exitNoAnswer;
        }
        awaitMessage();
    }
}

std::optional<ExitStatus> Watch::outcome() const {
    if (StopRequest::isMade()) return exitYes;
    if (m_limits.hasCount() && m_seen >= m_limits.count) return exitYes;
    if (!m_limits.hasTime() || Clock::now() < m_end) return std::nullopt;
    return m_limits.hasCount() ? exitTimeOut : exitYes;
}

void Watch::show(NySe::ActionType action, CMemFile& payload) {
    ++m_seen;
    const Notice notice = readNotice(action, payload);
    m_context.output.next({notice.line}, notice.record);
}

}  // namespace apps::nyctl
