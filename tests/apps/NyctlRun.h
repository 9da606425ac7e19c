// One line of nyctl's in this process: its status, and what it prints.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "apps/nyctl/Commands.h"

using namespace apps;
using namespace apps::nyctl;

class NyctlRun {
  public:
    // On the session's connection, as in the shell.
    ExitStatus operator()(Session& session, const Options& options, const std::string& line) {
        const Output output(options);
        ExitStatus status = exitUsage;
        CLI::App app("", "");
        addCommands(app, session, output, status);
        const Capture capture(*this);
        app.parse(line);
        return status;
    }
    // On a connection of its own.
    ExitStatus operator()(const Options& options, const std::string& line) {
        Session session(options);
        return (*this)(session, options, line);
    }

    const std::string& printed() const { return m_printed; }
    const std::string& complaint() const { return m_complaint; }

  private:
    // Ends also when the line makes no sense, which the parser throws for.
    class Capture {
      public:
        explicit Capture(NyctlRun& run) : m_run(run) {
            ::testing::internal::CaptureStdout();
            ::testing::internal::CaptureStderr();
        }
        ~Capture() {
            m_run.m_printed = ::testing::internal::GetCapturedStdout();
            m_run.m_complaint = ::testing::internal::GetCapturedStderr();
        }
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;

      private:
        NyctlRun& m_run;
    };

    std::string m_printed;
    std::string m_complaint;
};
