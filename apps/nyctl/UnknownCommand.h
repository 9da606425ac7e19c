// The error message for a command that does not exist.
#pragma once

#include <string>

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

// Reports why a line could not be parsed, or prints the help that it asks for. Returns exitYes
// after help, else exitUsage.
ExitStatus reportUsage(const CLI::App& app, const CLI::ParseError& error);

// Returns the number of characters to insert, delete or replace to turn one text into the other.
size_t editDistance(const std::string& left, const std::string& right);

}  // namespace apps::nyctl
