#include "apps/nyctl/Watch.h"

#include "apps/common/StopRequest.h"
#include "apps/nyctl/Notification.h"
#include "apps/nyctl/NotificationReceiver.h"

namespace apps::nyctl {

ExitStatus Watch::run() {
    const StopRequest stopRequest;
    const ExitStatus status = follow();
    if (status == exitNo) Output::complain("the server has no port that is free on this machine");
    // Not earlier: the receiver uses the listener, which is destroyed with the connection.
    return status == exitNoReply ? noReply(m_context) : status;
}

// The receiver exists before the listener starts, so that no notification is missed.
ExitStatus Watch::follow() {
    NyServerApp& listener = m_context.session.listener();
    NotificationReceiver receiver(
        listener, [this](NySe::ActionType action, CMemFile& payload) { show(action, payload); });
    if (!m_context.session.listen()) return m_context.client().isAlive() ? exitNo : exitNoReply;
    Output::note("listening on port " + std::to_string(listener.getPortNumber()));
    m_end = Clock::now() + std::chrono::duration_cast<Clock::duration>(m_limits.time);
    for (;;) {
        if (const auto end = outcome()) return *end;
        if (receiver.receive(kRound)) continue;
        // Checked last, so that notifications received before the connection was lost are shown.
        if (!m_context.client().IsConnected()) {
            Output::complain("the connection to the server was lost");
            return exitNoReply;
        }
    }
}

std::optional<ExitStatus> Watch::outcome() const {
    if (StopRequest::isRequested()) return exitYes;
    if (m_limits.hasCount() && m_seen >= m_limits.count) return exitYes;
    if (!m_limits.hasTime() || Clock::now() < m_end) return std::nullopt;
    return m_limits.hasCount() ? exitTimeOut : exitYes;
}

void Watch::show(NySe::ActionType action, CMemFile& payload) {
    ++m_seen;
    const Notification notification = readNotification(action, payload);
    m_context.output.next({notification.line}, notification.record);
}

Run defineWatch(CLI::App& command) {
    constexpr double kLongest = 1e6;
    auto count = std::make_shared<unsigned long>(0);
    auto seconds = std::make_shared<double>(0);
    command.add_option("--count", *count, "Exit with status 0 after this many notifications")
        ->check(CLI::Range(1UL, 1'000'000'000UL));
    command
        .add_option(
            "--timeout", *seconds,
            "Exit after this many seconds: with status 4 if fewer than --count arrived, with 0 "
            "without --count")
        ->check(CLI::Range(0.001, kLongest));
    return [count, seconds](Context& context) {
        const WatchLimits limits{*count, std::chrono::duration<double>(*seconds)};
        if (context.output.options().isShell && !limits.hasCount() && !limits.hasTime()) {
            Output::complain("in the shell, watch needs --count or --timeout");
            return exitUsage;
        }
        return Watch(context, limits).run();
    };
}

}  // namespace apps::nyctl
