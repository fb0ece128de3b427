// The command line as the tools of this library have it: the verb first, then names and options;
// `help`, `version`, and what is said of a wrong one.
#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "exit_code.h"
#include "report.h"
#include "talk_options.h"

namespace zolib {

// A name that begins with a bracket reaches the parser with a mark in front. Who takes names from
// it takes them through these.
std::wstring wide(const std::string& text);
std::vector<std::wstring> wide(const std::vector<std::string>& texts);

// What is wrong with an empty text; nothing with another.
std::string emptiness(const std::string& text);
// A text that must not be empty: a script's variable that is not set is no name.
CLI::Option* addText(CLI::App& app, const char* name, std::string& text, const Text& help,
                     const char* type);
// One text each time it is given.
void addTexts(CLI::App& app, const char* name, std::vector<std::string>& texts, const Text& help,
              const char* type);
// --json, --quiet, --verbose.
void addTalkOptions(CLI::App& app, TalkOptions& options, const Text& verboseHelp);

// One command line. Who derives from it adds verbs to app() and, behind them, addHelp().
class CommandLine {
 public:
  // The options need not be made yet.
  CommandLine(Console& console, TalkOptions& options, const Text& purpose, const Text& generalHelp);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  virtual ~CommandLine() = default;

  // What stands in the arguments, wrong as they may be: whether to answer in JSON.
  void expect(const std::vector<std::string>& arguments);
  ExitCode run(const std::vector<std::string>& arguments);
  // Ends with kUsage and this complaint.
  ExitCode wrong(const std::string& text);

 protected:
  // The verb that TalkOptions::verb names, with its options filled.
  virtual ExitCode runVerb(const CLI::App& sub) = 0;

  CLI::App& addVerb(const char* name, const Text& summary);
  void addHelp(const Text& verboseHelp);
  // What the parser complains of, in words of our own.
  [[nodiscard]] static std::string complaintOf(const CLI::App& app, const CLI::ParseError& error);
  [[nodiscard]] CLI::App& app() noexcept { return app_; }
  [[nodiscard]] Console& console() noexcept { return console_; }

 private:
  [[nodiscard]] CLI::App* verbOf(const std::string& word);
  [[nodiscard]] std::string unknownVerb(const std::string& word) const;
  [[nodiscard]] std::string unexpected() const;
  ExitCode showHelp();
  ExitCode show(const char* key, const std::string& text, const std::string& line);

  Console& console_;
  TalkOptions& options_;
  std::string topic_;
  CLI::App app_;
  bool json_ = false;  // is asked for, whatever else is wrong
  const std::string version_;
};

// A tool's verbs are rows of a table, with a name and the function that runs them.
template <class Verbs>
[[nodiscard]] const auto& verbNamed(const Verbs& verbs, std::string_view name) {
  return *std::ranges::find_if(verbs, [name](const auto& verb) { return name == verb.name; });
}
template <class Verb, class Options>
ExitCode runNamed(const Verb& verb, const Options& options, Console& console) {
  Report report(options, console);
  verb.run(options, report);
  return report.finish();
}

}  // namespace zolib
