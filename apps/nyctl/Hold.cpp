#include "apps/nyctl/Hold.h"

#include <algorithm>

#include "apps/common/StopRequest.h"
#include "apps/nyctl/AliveCheck.h"
#include "apps/nyctl/HeldCommand.h"
#include "apps/nyctl/NotificationReceiver.h"
#include "apps/nyctl/ShareModeOption.h"
#include "NyServer/framing/NySeReply.h"

namespace apps::nyctl {

namespace {

// The interval of the requests for a lock when no notification arrives.
constexpr std::chrono::seconds kRetry(1);

// Returns whether the notification reports the release of that lock.
bool isRelease(NySe::ActionType action, CMemFile& payload, const CString& lock) {
    if (action != NySe::notifyLockReleased) return false;
    const std::unique_ptr<CObject> object(NySe::readReplyObject(payload, RUNTIME_CLASS(NySeLock)));
    return object != nullptr &&
           static_cast<const NySeLock&>(*object).getStrLockName().CompareNoCase(lock) == 0;
}

// Returns `program` and its arguments: the parser keeps these as they are, after the two dashes.
std::vector<std::string> commandWords(const std::string& program, const CLI::App& command) {
    std::vector<std::string> words = command.remaining();
    if (words.empty() || words.front() != "--") throw CLI::RequiredError("-- before COMMAND");
    words.front() = program;
    return words;
}

}  // namespace

ExitStatus Hold::run() {
    const StopRequest stopRequest;
    const ExitStatus status = acquire();
    if (status == exitNoReply) return noReply(m_context);
    if (status == exitYes) return runAndRelease();
    if (!StopRequest::isRequested()) Output::complain("the lock " + m_request.lock + " is refused");
    return status;
}

ExitStatus Hold::statusOf(bool isDone) const {
    return isDone ? exitYes : m_context.client().isAlive() ? exitNo : exitNoReply;
}

ExitStatus Hold::registerUser() const {
    return statusOf(m_context.session.registerUser());
}

ExitStatus Hold::request() const {
    return statusOf(m_context.client().lock(fromUtf8(m_request.lock), m_request.mode));
}

ExitStatus Hold::acquire() {
    if (m_request.wait.count() > 0) return acquireInTime();
    const ExitStatus status = registerUser();
    return status == exitYes ? request() : status;
}

// Listens before the first request, so that no release is missed. Without a port it only retries.
ExitStatus Hold::acquireInTime() {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(m_request.wait);
    const CString lock = fromUtf8(m_request.lock);
    bool isReleased = false;
    NotificationReceiver receiver(m_context.session.listener(),
                                  [&](NySe::ActionType action, CMemFile& payload) {
                                      isReleased = isReleased || isRelease(action, payload, lock);
                                  });
    m_context.session.listen();
    if (const ExitStatus status = registerUser(); status != exitYes) return status;
    for (;;) {
        const ExitStatus status = request();
        if (status != exitNo) return status;
        const auto retry = std::min<Clock::time_point>(end, Clock::now() + kRetry);
        for (isReleased = false; !isReleased && Clock::now() < retry;) {
            if (StopRequest::isRequested()) return exitNo;
            receiver.receive(kRound);
        }
        if (Clock::now() >= end) return exitNo;
    }
}

ExitStatus Hold::runAndRelease() const {
    const int status = StopRequest::isRequested() ? exitNo : runCommand();
    m_context.client().unLock(fromUtf8(m_request.lock));
    m_context.client().isAlive();  // the lock is released when the reply arrives
    return static_cast<ExitStatus>(status);
}

int Hold::runCommand() const {
    const auto command = HeldCommand::start(m_request.command);
    if (!command->isStarted())
        Output::complain("the command " + m_request.command.front() + " cannot be started");
    if (StopRequest::isRequested()) command->terminate();  // requested while it was started
    AliveCheck check(m_context.client());
    for (bool isHeld = true;;) {
        if (const auto status = command->wait(kRound)) return *status;
        if (!isHeld || check.isAlive()) continue;
        isHeld = false;
        Output::complain("the connection to the server was lost, and the lock with it");
        command->terminate();
        m_context.session.close();
    }
}

Run defineHold(CLI::App& command) {
    constexpr double kLongest = 1e6;
    auto name = argument<std::string>(command, "NAME", "The lock's name");
    auto program =
        argument<std::string>(command, "COMMAND", "The command and its arguments, after --");
    auto mode = shareModeOption(command, kExclusive);
    auto seconds = std::make_shared<double>(0);
    command
        .add_option("--wait", *seconds,
                    "Wait for the lock at most this many seconds; 0 requests it once")
        ->check(CLI::Range(0.0, kLongest))
        ->capture_default_str();
    command.prefix_command();
    command.parse_complete_callback([=, &command] { commandWords(*program, command); });
    return [=, &command](Context& context) {
        if (context.output.options().isShell) {
            Output::complain(
                "in the shell, hold is not possible: its command would read the lines");
            return exitUsage;
        }
        const HoldRequest request{*name, *mode, std::chrono::duration<double>(*seconds),
                                  commandWords(*program, command)};
        return Hold(context, request).run();
    };
}

}  // namespace apps::nyctl
