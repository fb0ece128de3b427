// The language of a command line: --language TAG, which may stand anywhere in it, or else the
// environment's ZOLIB_LANGUAGE, which all tools share.
#pragma once

#include <string>
#include <vector>

#include "command_line.h"

namespace zolib {

// Takes --language out of the arguments and speaks it, or else what the environment asks for. Gives
// what is wrong with it; nothing when all is well.
std::string speakAsAsked(std::vector<std::string>& arguments);

// The option as the help names it, and to complain of when it has no value.
void addLanguage(CLI::App& app);

// Runs a command line, which derives from CommandLine, in that language.
template <class Line>
ExitCode runInLanguage(std::vector<std::string> arguments, Console& console) {
  const std::string complaint = speakAsAsked(arguments);
  Line line(console);
  line.expect(arguments);
  return complaint.empty() ? line.run(arguments) : line.wrong(complaint);
}

}  // namespace zolib
