// The shell: commands from standard input, one per line, all on one connection.
#pragma once

#include "apps/nyctl/Commands.h"

namespace apps::nyctl {

// Runs until the end of the input or the line "exit". Empty lines and lines that begin with # are
// skipped. Returns the outcome of the last command that was not exitYes, or exitYes.
ExitStatus runShell(Session& session, const Output& output);

}  // namespace apps::nyctl
