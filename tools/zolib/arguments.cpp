#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

#include "command_line.h"
#include "help.h"
#include "program.h"
#include "text.h"

namespace zolib {
namespace {

// What CLI11 fills: texts in UTF-8.
struct Raw {
  std::string library, filesFrom, name, output, dot;
  std::vector<std::string> names, include, exclude;
};

std::string noSeconds(const std::string& text) {
  double seconds = -1;
  return CLI::detail::lexical_cast(text, seconds) && seconds >= 0
             ? std::string()
             : text + " is no number of seconds from 0 on";
}

void addPackOptions(CLI::App& app, Options& options, Raw& raw) {
  static const std::map<std::string, Mode> kModes{{"fast", Mode::kFast},
                                                  {"normal", Mode::kNormal},
                                                  {"best", Mode::kBest},
                                                  {"store", Mode::kStore},
                                                  {"auto", Mode::kAuto}};
  app.add_option("--mode", options.mode,
                 "fast, normal, best, store, or auto: normal, but stored where that is no smaller "
                 "(default)")
      ->transform(CLI::CheckedTransformer(kModes).description(""))
      ->type_name("MODE");
  addText(app, "--name", raw.name, "The member that data from standard input becomes", "NAME");
}

void addOverwrite(CLI::App& app, Options& options) {
  static const std::map<std::string, Overwrite> kWays{
      {"never", Overwrite::kNever}, {"always", Overwrite::kAlways}, {"newer", Overwrite::kNewer}};
  app.add_option("--overwrite", options.overwrite, "What exists already: never, always, or newer")
      ->transform(CLI::CheckedTransformer(kWays).description(""))
      ->type_name("WAY");
}

void addRecover(CLI::App& app, Options& options) {
  CLI::Option* const first = app.add_flag_callback(
      "--first", [&options] { options.recover = Recover::kFirst; },
      "Of several of a name the first that was packed, not the latest");
  app.add_flag_callback(
         "--all", [&options] { options.recover = Recover::kAll; },
         "All of them: the latest under its name, others as NAME~1, NAME~2, from the first on")
      ->excludes(first);
}

void addVerb(CLI::App& app, const Verb& verb, Options& options, Raw& raw) {
  CLI::App& sub = *app.add_subcommand(verb.name, verb.summary);
  if (*verb.alias) sub.alias(verb.alias);
  sub.footer(std::string("Examples:\n") + verb.examples);
  addText(sub, "LIBRARY", raw.library, "The library", "")->required();
  const unsigned int takes = verb.takes;
  if (takes & (kOneName | kTwoNames)) {
    sub.add_option("NAME", raw.names, verb.namesHelp)
        ->required()
        ->expected(takes & kOneName ? 1 : 2)
        ->check(emptiness)
        ->type_name("");
  } else if (takes & kNames) {
    sub.add_option("NAME", raw.names, verb.namesHelp)->check(emptiness)->type_name("");
  }
  if (takes & kSelect) {
    addTexts(sub, "--include", raw.include, "Only what this pattern fits; may be repeated",
             "PATTERN");
    addTexts(sub, "--exclude", raw.exclude, "Not what this pattern fits; may be repeated",
             "PATTERN");
    addText(sub, "--files-from", raw.filesFrom,
            "More names, one per line of this file; - is standard input", "FILE");
  }
  if (takes & kFiles) addPackOptions(sub, options, raw);
  if ((takes & kFiles) || verb.name == std::string_view("extract")) addOverwrite(sub, options);
  if (verb.name == std::string_view("extract"))
    addText(sub, "-o,--output", raw.output, "The folder to extract to", "FOLDER");
  if (verb.name == std::string_view("info"))
    addText(sub, "--dot", raw.dot, "Write a graph for Graphviz to this file; - is standard output",
            "FILE");
  if (verb.name == std::string_view("list"))
    sub.add_flag("--names", options.namesOnly, "Only the names, one per line");
  if (verb.name == std::string_view("delete"))
    sub.add_flag("--physically", options.physically, "For good, by rewriting the file");
  if (verb.name == std::string_view("recover")) addRecover(sub, options);
  if (takes & kDeletedToo) sub.add_flag("--deleted", options.deleted, "Deleted members, too");
  if (takes & kWrites) sub.add_flag("--dry-run", options.dryRun, "Only show what would be done");
  if (takes & kLocks)
    sub.add_option("--lock-timeout", options.lockSeconds,
                   "Seconds to wait while another program writes (default 5)")
        ->check(noSeconds)
        ->type_name("SECONDS");
  addTalkOptions(sub, options, "Name each member");
}

// What CLI11 cannot say; empty when all is well.
std::string complaint(const Verb& verb, const Options& options) {
  if ((verb.takes & kNeedsName) && options.names.empty() && !options.filesFrom)
    return "name what to " + std::string(verb.name);
  if (!(verb.takes & kFiles)) return {};
  const auto inputs = std::count(options.names.begin(), options.names.end(), L"-");
  const bool listFromInput = options.filesFrom && *options.filesFrom == L"-";
  if (inputs + listFromInput > 1) return "standard input can be used once only";
  if ((inputs > 0) == options.memberName.empty())
    return inputs ? "data from standard input needs --name" : "--name goes with - as a file";
  return {};
}

void take(Options& options, const Raw& raw, const CLI::App& sub) {
  options.library = wide(raw.library);
  options.names = wide(raw.names);
  options.include = wide(raw.include);
  options.exclude = wide(raw.exclude);
  options.memberName = wide(raw.name);
  options.output = wide(raw.output);
  const auto given = [&](const char* name) {
    const CLI::Option* option = sub.get_option_no_throw(name);
    return option && option->count() > 0;
  };
  if (given("--files-from")) options.filesFrom = wide(raw.filesFrom);
  if (given("--dot")) options.dot = wide(raw.dot);
}

class ZolibCommandLine final : public CommandLine {
 public:
  explicit ZolibCommandLine(Console& console);

 private:
  ExitCode runVerb(const CLI::App& sub) override;

  Options options_;
  Raw raw_;
};

ZolibCommandLine::ZolibCommandLine(Console& console)
    : CommandLine(console, options_, "Keeps libraries: many members, packed, in one file.",
                  kGeneralHelp) {
  for (const Verb& verb : verbs()) addVerb(app(), verb, options_, raw_);
  addHelp("Name each member");
}

ExitCode ZolibCommandLine::runVerb(const CLI::App& sub) {
  const Verb& verb = *std::ranges::find(verbs(), std::string_view(options_.verb), &Verb::name);
  take(options_, raw_, sub);
  if (const std::string text = complaint(verb, options_); !text.empty()) return wrong(text);
  Report report(options_, console());
  verb.run(options_, report);
  return report.finish();
}

}  // namespace

const char* const kProgram = "zolib";

ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console) {
  return ZolibCommandLine(console).run(arguments);
}

}  // namespace zolib
