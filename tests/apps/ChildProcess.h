// A program of this build as a process of its own, ended at the latest when this goes, or when the
// process that started it does.
#pragma once

#include <gtest/gtest.h>

#include <psapi.h>

#include <chrono>
#include <string>

#include "NyServer/base/detail/WindowsHandles.h"

class ChildProcess {
  public:
    // `program`: its name without a folder. What it prints goes to `output`, what it complains
    // about to `errors`; it reads from `input`. All of them inheritable, or null.
    ChildProcess(const std::wstring& program, const std::wstring& arguments, HANDLE input,
                 HANDLE output, HANDLE errors) {
        const std::wstring path = folder() + program;
        std::wstring line = L'"' + path + L"\" " + arguments;
        STARTUPINFOW start{};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdInput = input;
        start.hStdOutput = output;
        start.hStdError = errors;
        PROCESS_INFORMATION made{};
        EXPECT_TRUE(::CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE,
                                     CREATE_SUSPENDED, nullptr, nullptr, &start, &made))
            << ::GetLastError();
        m_process = NySe::UniqueKernelHandle(made.hProcess);
        const NySe::UniqueKernelHandle thread(made.hThread);
        EXPECT_TRUE(::AssignProcessToJobObject(m_job.get(), m_process.get()));
        ::ResumeThread(thread.get());
    }
    ~ChildProcess() { kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Gone at once, without a word to anybody.
    void kill() {
        if (hasEnded(std::chrono::milliseconds(0))) return;
        ::TerminateProcess(m_process.get(), 1);
        hasEnded(std::chrono::seconds(10));
    }

    // Waits for its end so long.
    bool hasEnded(std::chrono::milliseconds wait) const {
        return ::WaitForSingleObject(m_process.get(), static_cast<DWORD>(wait.count())) ==
               WAIT_OBJECT_0;
    }

    DWORD id() const { return ::GetProcessId(m_process.get()); }

    DWORD exitCode() const {
        DWORD code = STILL_ACTIVE;
        ::GetExitCodeProcess(m_process.get(), &code);
        return code;
    }

    HANDLE handle() const { return m_process.get(); }

    // In bytes.
    SIZE_T workingSet() const {
        PROCESS_MEMORY_COUNTERS counters{};
        EXPECT_TRUE(::GetProcessMemoryInfo(m_process.get(), &counters, sizeof counters));
        return counters.WorkingSetSize;
    }

  private:
    // The processes in it end when its last handle is closed, as the system does for a process that
    // is killed.
    static NySe::UniqueKernelHandle makeJob() {
        NySe::UniqueKernelHandle job(::CreateJobObjectW(nullptr, nullptr));
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        EXPECT_TRUE(::SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits,
                                              sizeof limits));
        return job;
    }

    // Where this program is, with the backslash.
    static std::wstring folder() {
        wchar_t path[MAX_PATH];
        const std::wstring own(path, ::GetModuleFileNameW(nullptr, path, MAX_PATH));
        return own.substr(0, own.rfind(L'\\') + 1);
    }

    const NySe::UniqueKernelHandle m_job = makeJob();
    NySe::UniqueKernelHandle m_process;
};

// A new file that a child may write into while it is read.
inline NySe::UniqueKernelHandle outputFile(const std::wstring& path) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    return NySe::UniqueKernelHandle(::CreateFileW(path.c_str(), GENERIC_WRITE,
                                                  FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// A pipe of which a child may inherit one end.
struct Pipe {
    Pipe() {
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
        HANDLE read = nullptr;
        HANDLE write = nullptr;
        EXPECT_TRUE(::CreatePipe(&read, &write, &inheritable, 0));
        reading = NySe::UniqueKernelHandle(read);
        writing = NySe::UniqueKernelHandle(write);
    }
    static void keepToOneself(const NySe::UniqueKernelHandle& end) {
        ::SetHandleInformation(end.get(), HANDLE_FLAG_INHERIT, 0);
    }

    NySe::UniqueKernelHandle reading;
    NySe::UniqueKernelHandle writing;
};
