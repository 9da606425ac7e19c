// The commands of nyctl, the same on the command line and in the shell.
#pragma once

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

// Adds every command to `app`. Parsing a line with a command runs it and sets `status` to its
// outcome. All three must outlive `app`.
void addCommands(CLI::App& app, Session& session, const Output& output, ExitStatus& status);

}  // namespace apps::nyctl
