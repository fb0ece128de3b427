// What main() needs to know of the tool that it starts; each tool defines these.
#pragma once

#include <string>
#include <vector>

#include "console.h"
#include "exit_code.h"

namespace zolib {

// As it is called: before each complaint, in the help, and as the first key of a JSON answer.
extern const char* const kProgram;

// Runs what the arguments ask for. Help goes to standard output; a wrong command line costs one
// line on standard error (with --json, a report, too) and gives kUsage.
ExitCode runCommandLine(const std::vector<std::string>& utf8Arguments, Console& console);

}  // namespace zolib
