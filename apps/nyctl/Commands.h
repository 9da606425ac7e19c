// The commands of nyctl, the same on the command line and in the shell, and the shell.
#pragma once

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

// Adds every command to `app`. Parsing a line with a command runs it and sets `status` to its
// outcome. All three must outlive `app`.
void addCommands(CLI::App& app, Session& session, const Output& output, ExitStatus& status);

// Runs commands from standard input, one per line, all on one connection, until the end of the
// input or the line "exit". Empty lines and lines that begin with # are skipped. Returns the
// outcome of the last command that was not exitYes, or exitYes.
ExitStatus runShell(Session& session, const Output& output);

}  // namespace apps::nyctl
