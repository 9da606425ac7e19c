// The option for the share mode of a lock.
#pragma once

#include "apps/nyctl/CommandTools.h"
#include "NyServer/records/NySeShareMode.h"

namespace apps::nyctl {

// Returns the share mode that `text` names: a number, or words joined by "+", which are those that
// shareModeWords returns and "exclusive". Nothing if it names none.
std::optional<unsigned> parseShareMode(const std::string& text);

// What a lock must request so that of several sessions only one gets it.
inline constexpr unsigned kExclusive =
    NySe::access1 | NySe::access2 | NySe::exclude1 | NySe::exclude2;

// Adds --mode. The value is set when the line is parsed.
std::shared_ptr<unsigned> shareModeOption(CLI::App& command, unsigned standard);

}  // namespace apps::nyctl
