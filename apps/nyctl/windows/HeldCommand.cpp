#include "apps/nyctl/HeldCommand.h"

#include <algorithm>

#include "apps/common/Utf8.h"
#include "NyServer/base/detail/WindowsHandles.h"

namespace apps::nyctl {

namespace {

constexpr int kSigterm = 15;

// Returns the word so that CommandLineToArgvW returns it: backslashes are literal unless a
// quotation mark follows.
std::string quoted(const std::string& word) {
    std::string text = "\"";
    size_t backslashes = 0;
    for (const char character : word) {
        if (character == '"') text.append(backslashes + 1, '\\');
        backslashes = character == '\\' ? backslashes + 1 : 0;
        text += character;
    }
    text.append(backslashes, '\\');
    return text + '"';
}

std::string commandLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        if (!line.empty()) line += ' ';
        const bool isPlain = !word.empty() && word.find_first_of(" \t\n\v\"") == std::string::npos;
        line += isPlain ? word : quoted(word);
    }
    return line;
}

// The standard handles of this process, which are all that the command inherits: a socket that it
// had would keep the connection open.
class InheritedHandles {
  public:
    explicit InheritedHandles(STARTUPINFOEXW& start) {
        STARTUPINFOW& info = start.StartupInfo;
        info.dwFlags = STARTF_USESTDHANDLES;
        info.hStdInput = add(STD_INPUT_HANDLE);
        info.hStdOutput = add(STD_OUTPUT_HANDLE);
        info.hStdError = add(STD_ERROR_HANDLE);
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_list.resize(size);
        start.lpAttributeList = list();
        ::InitializeProcThreadAttributeList(list(), 1, 0, &size);
        ::UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles.data(),
                                    m_handles.size() * sizeof(HANDLE), nullptr, nullptr);
    }
    ~InheritedHandles() { ::DeleteProcThreadAttributeList(list()); }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;

    bool isEmpty() const { return m_handles.empty(); }

  private:
    LPPROC_THREAD_ATTRIBUTE_LIST list() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_list.data());
    }

    // Each handle once, as the list requires.
    HANDLE add(DWORD which) {
        const HANDLE handle = ::GetStdHandle(which);
        if (::SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT) &&
            std::find(m_handles.begin(), m_handles.end(), handle) == m_handles.end())
            m_handles.push_back(handle);
        return handle;
    }

    std::vector<HANDLE> m_handles;
    std::vector<char> m_list;
};

// Processes in it end when its handle is closed.
NySe::UniqueKernelHandle makeJob() {
    NySe::UniqueKernelHandle job(::CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    ::SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

class Process : public HeldCommand {
  public:
    explicit Process(const std::vector<std::string>& words) : m_error(startCommand(words)) {}

    bool isStarted() const override { return m_error == 0; }

    std::optional<int> wait(DWORD milliseconds) override {
        if (!isStarted()) return isNotFound() ? kNotFound : kNotExecutable;
        if (::WaitForSingleObject(m_process.get(), milliseconds) != WAIT_OBJECT_0)
            return std::nullopt;
        DWORD status = 0;
        ::GetExitCodeProcess(m_process.get(), &status);
        return static_cast<int>(status);
    }

    void terminate() override { ::TerminateJobObject(m_job.get(), kSignalled + kSigterm); }

  private:
    bool isNotFound() const {
        return m_error == ERROR_FILE_NOT_FOUND || m_error == ERROR_PATH_NOT_FOUND;
    }

    // It begins to run in the job only. Returns 0 or the error number.
    DWORD startCommand(const std::vector<std::string>& words) {
        CString line = fromUtf8(commandLine(words));
        STARTUPINFOEXW info{};
        info.StartupInfo.cb = sizeof info;
        const InheritedHandles inherited(info);
        PROCESS_INFORMATION made{};
        if (!::CreateProcessW(nullptr, line.GetBuffer(), nullptr, nullptr, !inherited.isEmpty(),
                              CREATE_SUSPENDED | EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                              &info.StartupInfo, &made))
            return ::GetLastError();
        m_process.reset(made.hProcess);
        const NySe::UniqueKernelHandle thread(made.hThread);
        ::AssignProcessToJobObject(m_job.get(), m_process.get());
        ::ResumeThread(thread.get());
        return 0;
    }

    const NySe::UniqueKernelHandle m_job = makeJob();
    NySe::UniqueKernelHandle m_process;
    const DWORD m_error;
};

}  // namespace

std::unique_ptr<HeldCommand> HeldCommand::start(const std::vector<std::string>& words) {
    return std::make_unique<Process>(words);
}

}  // namespace apps::nyctl
