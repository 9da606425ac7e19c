#include "apps/nyctl/HeldCommand.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <sstream>

namespace apps::nyctl {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2, SIGCHLD};
// The status when the system does not report that of the command.
constexpr int kUnknown = 1;

// For the handler of signals. It runs on the thread of the HeldCommand: those of the library block
// these signals.
std::atomic<pid_t> s_command = 0;
std::atomic<std::uint64_t> s_early = 0;  // a bit for each signal while no command runs
int s_childEvent = -1;                   // an eventfd

void passOn(int signal) {
    if (const pid_t command = s_command; command > 0) {
        ::kill(command, signal);
    } else {
        s_early |= std::uint64_t(1) << signal;
    }
}

// The signals of a terminal are sent to all of its foreground processes, thus to the command too
// once it runs.
void onSignal(int signal, siginfo_t* info, void*) {
    const int error = errno;
    if (signal == SIGCHLD) {
        ::eventfd_write(s_childEvent, 1);
    } else if (info->si_code <= 0 || s_command == 0) {
        passOn(signal);
    }
    errno = error;
}

// No handler runs while it exists.
class BlockedSignals {
  public:
    BlockedSignals() {
        sigset_t blocked;
        ::sigemptyset(&blocked);
        for (const int signal : kSignals) ::sigaddset(&blocked, signal);
        ::pthread_sigmask(SIG_BLOCK, &blocked, &m_earlier);
    }
    ~BlockedSignals() { ::pthread_sigmask(SIG_SETMASK, &m_earlier, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

  private:
    sigset_t m_earlier;
};

// Returns the file that posix_spawnp finds by that name.
std::string fileOf(const std::string& name) {
    const char* const path = std::getenv("PATH");
    if (name.find('/') != std::string::npos || path == nullptr) return name;
    std::istringstream folders(path);
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string file = (folder.empty() ? "." : folder) + "/" + name;
        if (::access(file.c_str(), X_OK) == 0) return file;
    }
    return name;
}

// Returns 0 or the error number.
int spawn(const std::vector<std::string>& words, pid_t& command) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    return ::posix_spawnp(&command, arguments[0], nullptr, nullptr, arguments.data(), environ);
}

// As a shell does, runs a file without a known format, such as a script without #!, by /bin/sh.
int spawnOrInterpret(const std::vector<std::string>& words, pid_t& command) {
    const int error = spawn(words, command);
    if (error != ENOEXEC) return error;
    std::vector<std::string> interpreted{"/bin/sh", fileOf(words.front())};
    interpreted.insert(interpreted.end(), words.begin() + 1, words.end());
    return spawn(interpreted, command);
}

// The handlers of signals are set while it exists.
class Process : public HeldCommand {
  public:
    explicit Process(const std::vector<std::string>& words) {
        s_childEvent = m_childEvent;
        s_early = 0;
        struct sigaction action {};
        action.sa_sigaction = &onSignal;
        action.sa_flags = SA_RESTART | SA_SIGINFO | SA_NOCLDSTOP;
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            setHandler(kSignals[i], action, m_earlier[i]);
        m_error = startCommand(words);
    }
    ~Process() override {
        if (s_command > 0) passOn(SIGTERM);
        s_command = 0;
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            ::sigaction(kSignals[i], &m_earlier[i], nullptr);
        ::close(m_childEvent);
    }

    bool isStarted() const override { return m_error == 0; }

    std::optional<int> wait(DWORD milliseconds) override {
        if (!isStarted()) return m_error == ENOENT ? kNotFound : kNotExecutable;
        if (const auto status = ended()) return status;
        pollfd waiting{m_childEvent, POLLIN, 0};
        ::poll(&waiting, 1, static_cast<int>(milliseconds));
        eventfd_t discarded;
        ::eventfd_read(m_childEvent, &discarded);
        return ended();
    }

    void terminate() override { passOn(SIGTERM); }

  private:
    // A signal that was ignored stays ignored, also by the command.
    static void setHandler(int signal, const struct sigaction& action, struct sigaction& earlier) {
        ::sigaction(signal, nullptr, &earlier);
        if (signal == SIGCHLD || earlier.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }

    // Returns 0 or the error number. A terminal's signal that arrives meanwhile may reach the
    // command twice; none is lost.
    static int startCommand(const std::vector<std::string>& words) {
        pid_t command = 0;
        if (const int error = spawnOrInterpret(words, command)) return error;
        const BlockedSignals blocked;
        s_command = command;
        const std::uint64_t early = s_early.exchange(0);
        for (const int signal : kSignals)
            if (early >> signal & 1) passOn(signal);
        return 0;
    }

    // Once the command has been waited for, its number may be another process's.
    static std::optional<int> ended() {
        const BlockedSignals blocked;
        siginfo_t info{};
        const int result = ::waitid(P_PID, static_cast<id_t>(s_command), &info, WEXITED | WNOHANG);
        if (result == 0 && info.si_pid == 0) return std::nullopt;
        s_command = 0;
        if (result != 0) return kUnknown;
        return info.si_code == CLD_EXITED ? info.si_status : kSignalled + info.si_status;
    }

    const int m_childEvent = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    struct sigaction m_earlier[std::size(kSignals)];
    int m_error = 0;
};

}  // namespace

std::unique_ptr<HeldCommand> HeldCommand::start(const std::vector<std::string>& words) {
    return std::make_unique<Process>(words);
}

}  // namespace apps::nyctl
