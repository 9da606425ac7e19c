// nycentral as a process of its own.
#pragma once

#include <algorithm>
#include <memory>
#include <string>

#include "tests/apps/ChildProcess.h"
#include "tests/support/Gate.h"
#include "tests/support/TempFile.h"

class CentralProgram {
  public:
    // Starts it with a port of its own and these arguments, and waits until it listens.
    explicit CentralProgram(const std::wstring& arguments)
        : m_output(outputFile(m_folder.path("output"))),
          m_errors(outputFile(m_folder.path("errors"))) {
        m_process = std::make_unique<ChildProcess>(
            L"nycentral.exe", L"--port-file \"" + m_folder.path("port") + L"\" " + arguments,
            nullptr, m_output.get(), m_errors.get());
        eventually([this] {
            m_port = std::atoi(m_folder.content("port").c_str());  // none while it is being named
            return m_port != 0 || m_process->hasEnded(std::chrono::milliseconds(0));
        });
        EXPECT_NE(0, m_port) << errors();
    }

    int port() const { return m_port; }
    std::string output() const { return textOf("output"); }
    std::string errors() const { return textOf("errors"); }
    ChildProcess& process() { return *m_process; }

  private:
    std::string textOf(std::string_view name) const {
        std::string text = m_folder.content(name);
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }

    TempFolder m_folder;
    NySe::UniqueKernelHandle m_output;
    NySe::UniqueKernelHandle m_errors;
    std::unique_ptr<ChildProcess> m_process;
    int m_port = 0;
};
