// The command that shows notifications.
#pragma once

#include "apps/nyctl/CommandTools.h"

Run defineWatch(CLI::App& command);
