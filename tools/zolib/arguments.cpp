#include "arguments.h"

#include <zo/system/dll_version.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <numeric>

#include "help.h"
#include "text.h"

namespace zolib {
namespace {

// What CLI11 fills: texts in UTF-8.
struct Raw {
  std::string library, filesFrom, name, output, dot, topic;
  std::vector<std::string> names, include, exclude;
};

// CLI11 takes "[a,b]" for a list of two values. It is a name here: a mark before the bracket keeps
// it whole, and goes again.
constexpr char kMark = '\1';

std::string marked(const std::string& argument) {
  return argument.starts_with('[') ? kMark + argument : argument;
}

std::string unmarked(std::string text) {
  std::erase(text, kMark);
  return text;
}

std::wstring wide(const std::string& text) { return toWide(unmarked(text)); }

std::vector<std::wstring> wide(const std::vector<std::string>& texts) {
  std::vector<std::wstring> result;
  result.reserve(texts.size());
  for (const std::string& text : texts) result.push_back(wide(text));
  return result;
}

std::string emptiness(const std::string& text) {
  return text.empty() ? "an empty text is no name" : std::string();
}

std::string noSeconds(const std::string& text) {
  double seconds = -1;
  return CLI::detail::lexical_cast(text, seconds) && seconds >= 0
             ? std::string()
             : text + " is no number of seconds from 0 on";
}

// A text that must not be empty: a script's variable that is not set is no name.
CLI::Option* addText(CLI::App& app, const char* name, std::string& text, const char* help,
                     const char* type) {
  return app.add_option(name, text, help)->check(emptiness)->type_name(type);
}

// One text each time it is given.
void addTexts(CLI::App& app, const char* name, std::vector<std::string>& texts, const char* help,
              const char* type) {
  app.add_option(name, texts, help)->allow_extra_args(false)->check(emptiness)->type_name(type);
}

void addCommonOptions(CLI::App& app, Options& options) {
  app.add_flag("--json", options.json, "Answer with one JSON object on standard output");
  app.add_flag("-q,--quiet", options.quiet, "Say only what went wrong");
  app.add_flag("-v,--verbose", options.verbose, "Name each member");
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
  addCommonOptions(sub, options);
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

std::string helpOf(const CLI::App& app) {
  const std::string name = app.get_parent() ? "zolib " + app.get_name() : app.get_name();
  return app.get_formatter()->make_help(&app, name, CLI::AppFormatMode::Normal);
}

// The letters to be changed, put in or left out on the way from one word to the other.
std::size_t distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char letter : from) {
    std::size_t before = row[0]++;
    for (std::size_t k = 0; k < to.size(); ++k) {
      const std::size_t replaced = before + (letter != to[k]);
      before = row[k + 1];
      row[k + 1] = std::min({replaced, before + 1, row[k] + 1});
    }
  }
  return row.back();
}

// One command line: the parser, and what it fills.
class CommandLine {
 public:
  explicit CommandLine(Console& console);
  ExitCode run(const std::vector<std::string>& arguments);

 private:
  [[nodiscard]] CLI::App* verbOf(const std::string& word);
  [[nodiscard]] std::string unknownVerb(const std::string& word) const;
  [[nodiscard]] std::string unexpected() const;
  ExitCode runVerb(const Verb& verb, const CLI::App& sub);
  ExitCode showHelp();
  ExitCode show(const char* key, const std::string& text, const std::string& line);
  ExitCode wrong(const std::string& text);

  Console& console_;
  Options options_;
  Raw raw_;
  CLI::App app_{"Keeps libraries: many members, packed, in one file.", "zolib"};
  bool json_ = false;  // is asked for, whatever else is wrong
  const std::string version_ = std::string("zolib ") + zoComVersion();
};

CommandLine::CommandLine(Console& console) : console_(console) {
  app_.allow_windows_style_options(false);  // a slash begins a path
  app_.require_subcommand(0, 1);
  app_.get_formatter()->column_width(28);
  app_.footer(kGeneralHelp);
  app_.set_version_flag("--version", version_);
  for (const Verb& verb : verbs()) addVerb(app_, verb, options_, raw_);
  CLI::App& help = *app_.add_subcommand("help", "Show this, or the options of a verb");
  help.add_option("VERB", raw_.topic, "The verb")->type_name("");
  addCommonOptions(help, options_);
  addCommonOptions(*app_.add_subcommand("version", "Show the version"), options_);
}

CLI::App* CommandLine::verbOf(const std::string& word) {
  const auto found = app_.get_subcommands([&](CLI::App* sub) { return sub->check_name(word); });
  return found.empty() ? nullptr : found[0];
}

std::string CommandLine::unknownVerb(const std::string& word) const {
  std::string alike;
  for (const CLI::App* sub : app_.get_subcommands([](const CLI::App*) { return true; })) {
    const std::string& name = sub->get_name();
    if (name.starts_with(word) || distance(word, name) <= std::max<std::size_t>(1, word.size() / 3))
      alike += (alike.empty() ? ", but " : ", ") + name;
  }
  return "there is no verb " + word + alike;
}

std::string CommandLine::unexpected() const {
  const std::vector<std::string> words = app_.remaining(true);
  const std::string word = words.empty() ? std::string() : words[0];
  return word.starts_with('-')
             ? "there is no option " + word + " here; a name that begins with - goes behind --"
             : word + " is one name too many";
}

ExitCode CommandLine::wrong(const std::string& text) {
  options_.json = json_;
  Report report(options_, console_);
  report.fail(kUsage, unmarked(text) + "; see `zolib help`");
  return report.finish();
}

ExitCode CommandLine::show(const char* key, const std::string& text, const std::string& line) {
  Report report(options_, console_);
  report.json()[key] = text;
  if (!options_.json) console_.out(line);
  return report.finish();
}

ExitCode CommandLine::showHelp() {
  const CLI::App* topic = raw_.topic.empty() ? &app_ : verbOf(raw_.topic);
  if (!topic) return wrong(unknownVerb(raw_.topic));
  const std::string text = helpOf(*topic);
  return show("text", text, text);
}

ExitCode CommandLine::runVerb(const Verb& verb, const CLI::App& sub) {
  take(options_, raw_, sub);
  if (const std::string text = complaint(verb, options_); !text.empty()) return wrong(text);
  Report report(options_, console_);
  verb.run(options_, report);
  return report.finish();
}

ExitCode CommandLine::run(const std::vector<std::string>& arguments) {
  json_ = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
  // The verb comes first: CLI11 would take a later word for it, be it the name of a file.
  const std::string first = arguments.empty() ? "" : arguments[0];
  if (first.empty()) return wrong("say what to do");
  if (const CLI::App* verb = verbOf(first))
    options_.verb = verb->get_name();
  else if (!first.starts_with('-'))
    return wrong(unknownVerb(first));
  else if (first != "-h" && first != "--help" && first != "--version")
    return wrong("the verb comes first, " + first + " behind it");
  std::vector<std::string> reversed;
  std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed), marked);
  try {
    app_.parse(std::move(reversed));
  } catch (const CLI::CallForVersion&) {
    console_.out(version_ + "\n");
    return kOk;
  } catch (const CLI::CallForHelp&) {
    const std::vector<CLI::App*> chosen = app_.get_subcommands();
    console_.out(helpOf(chosen.empty() ? app_ : *chosen[0]));
    return kOk;
  } catch (const CLI::ExtrasError&) {
    return wrong(unexpected());
  } catch (const CLI::ParseError& error) {
    return wrong(error.what());
  }
  if (options_.verb == "version") return show("version", zoComVersion(), version_ + "\n");
  for (const Verb& verb : verbs()) {
    if (options_.verb == verb.name) return runVerb(verb, *app_.get_subcommands().at(0));
  }
  return showHelp();
}

}  // namespace

ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console) {
  return CommandLine(console).run(arguments);
}

}  // namespace zolib
