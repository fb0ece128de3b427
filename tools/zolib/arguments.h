// The command line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "exit_code.h"
#include "options.h"
#include "report.h"

namespace zolib {

// Runs what the arguments ask for. Help goes to standard output; a wrong command line costs one
// line on standard error (with --json, a report, too) and gives kUsage.
ExitCode runCommandLine(const std::vector<std::string>& utf8Arguments, Console& console);

}  // namespace zolib
