#include <CLI/CLI.hpp>
#include <algorithm>
#include <span>
#include <thread>

#include "command_line.h"
#include "help.h"
#include "language.h"
#include "member_argument.h"
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
             : say({500, "%1 is no number of seconds from 0 on"}, text);
}

std::string noCount(const std::string& text) {
  const bool isCount = text.size() <= 4 && !text.empty() &&
                       text.find_first_not_of("0123456789") == std::string::npos;
  return isCount ? std::string() : say({536, "%1 is no number from 0 on"}, text);
}

std::string noThreads(const std::string& text) {
  const bool isNumber = noCount(text).empty() && std::stoi(text) >= 1 && std::stoi(text) <= 256;
  return isNumber ? std::string() : say({540, "%1 is no number of threads from 1 to 256"}, text);
}

using Words = std::span<const std::string_view>;

std::string noneOf(std::string_view option, std::string_view text, Words words) {
  std::string all;
  for (const std::string_view word : words) (all += all.empty() ? "" : ", ") += word;
  return say({504, "%1: %2 is none of %3"}, option, text, all);
}

// One of these words; the values of an enumeration in their order.
template <class Value>
void addChoice(CLI::App& app, const char* name, const Text& help, const char* type, Words words,
               Value& value) {
  const auto set = [name, words, &value](const std::string& text) {
    const auto found = std::ranges::find(words, text);
    if (found == words.end()) throw CLI::ValidationError(noneOf(name, text, words));
    value = static_cast<Value>(found - words.begin());
  };
  app.add_option_function<std::string>(name, set, say(help))->type_name(type);
}

void addMode(CLI::App& app, Options& options) {
  static constexpr std::string_view kModes[] = {"normal", "fast", "best", "store", "auto"};
  addChoice(app, "--mode",
            {501,
             "fast, normal, best, store, or auto: normal, but stored where that is no smaller "
             "(default)"},
            "MODE", kModes, options.mode);
}

void addPackOptions(CLI::App& app, Options& options, Raw& raw) {
  addMode(app, options);
  addText(app, "--name", raw.name, {502, "The member that data from standard input becomes"},
          "NAME");
}

void addOverwrite(CLI::App& app, Options& options) {
  static constexpr std::string_view kWays[] = {"never", "always", "newer"};
  addChoice(app, "--overwrite", {503, "What exists already: never, always, or newer"}, "WAY", kWays,
            options.overwrite);
}

void addExtract(CLI::App& app, Options& options, Raw& raw) {
  addText(app, "-o,--output", raw.output, {512, "The folder to extract to"}, "FOLDER");
  CLI::Option* const flat =
      app.add_flag("--flat", options.flat, say({532, "Without folders: by the last level alone"}));
  app.add_option("--strip", options.strip,
                 say({533, "Without so many folders in front; what lies in these stays"}))
      ->check(noCount)
      ->type_name("NUMBER")
      ->excludes(flat);
}

void addList(CLI::App& app, Options& options) {
  static constexpr std::string_view kSorts[] = {"file", "name", "size", "packed", "time"};
  CLI::Option* const names =
      app.add_flag("--names", options.namesOnly, say({514, "Only the names, one per line"}));
  app.add_flag("--folders", options.folders, say({534, "Folders with their totals"}))
      ->excludes(names);
  app.add_flag("--versions", options.versions,
               say({537, "Deleted members, too, each with its number: @17 names that one"}))
      ->excludes(names);
  addChoice(app, "--sort", {535, "file (the file's order, default), name, size, packed or time"},
            "ORDER", kSorts, options.sort);
}

void addDelete(CLI::App& app, Options& options) {
  CLI::Option* const physically = app.add_flag("--physically", options.physically,
                                               say({515, "For good, by rewriting the file"}));
  app.add_flag("--versions", options.versions,
               say({538, "And what was deleted before under the names"}))
      ->needs(physically);
}

void addRecover(CLI::App& app, Options& options) {
  CLI::Option* const first = app.add_flag_callback(
      "--first", [&options] { options.recover = Recover::kFirst; },
      say({505, "Of several of a name the first that was packed, not the latest"}));
  app.add_flag_callback(
         "--all", [&options] { options.recover = Recover::kAll; },
         say({506,
              "All of them: the latest under its name, others as NAME~1, NAME~2, from the first "
              "on"}))
      ->excludes(first);
}

constexpr Text kVerboseHelp{519, "Name each member"};

void addOptions(CLI::App& sub, const Verb& verb, Options& options, Raw& raw) {
  if (*verb.alias) sub.alias(verb.alias);
  sub.footer(say({507, "Examples:"}) + "\n" + say(verb.examples));
  addText(sub, "LIBRARY", raw.library, {508, "The library"}, "")->required();
  const unsigned int takes = verb.takes;
  if (takes & (kOneName | kTwoNames)) {
    sub.add_option("NAME", raw.names, say(verb.namesHelp))
        ->required()
        ->expected(1, takes & kOneName ? 1 : -1)  // of two names, complaint() tells
        ->check(emptiness)
        ->type_name("");
  } else if (takes & kNames) {
    sub.add_option("NAME", raw.names, say(verb.namesHelp))->check(emptiness)->type_name("");
  }
  if (takes & kInclude) {
    addTexts(sub, "--include", raw.include, {509, "Only what this pattern fits; may be repeated"},
             "PATTERN");
    addTexts(sub, "--exclude", raw.exclude, {510, "Not what this pattern fits; may be repeated"},
             "PATTERN");
  }
  if ((takes & kSelect) == kSelect) {
    addText(sub, "--files-from", raw.filesFrom,
            {511, "More names, one per line of this file, or ended by zeros; - is standard input"},
            "FILE");
  }
  const std::string_view name = verb.name;
  if (takes & kFiles) addPackOptions(sub, options, raw);
  if ((takes & kFiles) || name == "extract") addOverwrite(sub, options);
  if (name == "update" || name == "sync")
    sub.add_flag("--by-content", options.byContent,
                 say({530, "Compare size and check value, not times"}));
  if (name == "sync") addMode(sub, options);
  if ((takes & kFiles) || name == "sync")
    sub.add_flag("--verify", options.verify, say({531, "Read what was written, and compare it"}));
  if (name == "extract") addExtract(sub, options, raw);
  if (name == "info")
    addText(sub, "--dot", raw.dot,
            {513, "Write a graph for Graphviz to this file; - is standard output"}, "FILE");
  if (name == "list") addList(sub, options);
  if (name == "delete") addDelete(sub, options);
  if (name == "recover") addRecover(sub, options);
  if (takes & kDeletedToo)
    sub.add_flag("--deleted", options.deleted, say({516, "Deleted members, too"}));
  if (takes & kWrites)
    sub.add_flag("--dry-run", options.dryRun, say({517, "Only show what would be done"}));
  if (takes & kThreads)
    sub.add_option("--threads", options.threads,
                   say({539, "So many at once (default: one for each processor)"}))
        ->check(noThreads)
        ->type_name("NUMBER");
  if (takes & kLocks)
    sub.add_option("--lock-timeout", options.lockSeconds,
                   say({518, "Seconds to wait while another program writes (default 5)"}))
        ->check(noSeconds)
        ->type_name("SECONDS");
  addTalkOptions(sub, options, kVerboseHelp);
  addLanguage(sub);
}

// What CLI11 cannot say; empty when all is well.
std::string complaint(const Verb& verb, const Options& options) {
  if ((verb.takes & kTwoNames) && options.names.size() != 2)
    return say({561, "%1 takes two names, the old and the new"}, verb.name);
  if ((verb.takes & kNeedsName) && options.names.empty() && !options.filesFrom)
    return say({520, "name what to %1"}, verb.name);
  if (options.folders && options.sort == Sort::kTime)
    return say({541, "folders have no time to sort by"});
  if (!(verb.takes & kFiles)) return {};
  const auto inputs = std::count(options.names.begin(), options.names.end(), L"-");
  const bool listFromInput = options.filesFrom && *options.filesFrom == L"-";
  if (inputs + listFromInput > 1) return say({521, "standard input can be used once only"});
  if ((inputs > 0) == options.memberName.empty())
    return inputs ? say({522, "data from standard input needs --name"})
                  : say({523, "--name goes with - as a file"});
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

// LIBRARY|MEMBER is a library and the first of the names behind it.
std::string takeMember(const Verb& verb, Options& options) {
  const std::wstring given = options.library;
  std::wstring member;
  const int code = splitMember(options.library, member);
  if (code == ZoResult::refused) return {};
  if (code != ZoResult::ok) return say(kNoMember, options.library);
  const bool takesMembers = (verb.takes & kSelect) == kSelect && !(verb.takes & kFiles);
  if (!takesMembers && !(verb.takes & kTwoNames))
    return say({560, "%1 takes a library, and no member of one: %2"}, verb.name, given);
  options.names.insert(options.names.begin(), member);
  return {};
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
    : CommandLine(console, options_, {524, "Keeps libraries: many members, packed, in one file."},
                  kGeneralHelp) {
  options_.threads = std::clamp(std::thread::hardware_concurrency(), 1U, 64U);
  for (const Verb& verb : verbs())
    addOptions(addVerb(verb.name, verb.summary), verb, options_, raw_);
  addHelp(kVerboseHelp);
  addLanguage(app());
}

ExitCode ZolibCommandLine::runVerb(const CLI::App& sub) {
  const Verb& verb = verbNamed(verbs(), options_.verb);
  take(options_, raw_, sub);
  std::string text = takeMember(verb, options_);
  if (text.empty()) text = complaint(verb, options_);
  return text.empty() ? runNamed(verb, options_, console()) : wrong(text);
}

}  // namespace

const char* const kProgram = "zolib";

ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console) {
  return runInLanguage<ZolibCommandLine>(arguments, console);
}

}  // namespace zolib
