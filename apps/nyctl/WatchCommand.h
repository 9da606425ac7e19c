// The command that shows notifications.
#pragma once

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

Run defineWatch(CLI::App& command);

}  // namespace apps::nyctl
