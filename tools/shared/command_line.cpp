#include "command_line.h"

#include <zo/system/dll_version.h>

#include <algorithm>
#include <numeric>
#include <sstream>

#include "program.h"
#include "text.h"

namespace zolib {
namespace {

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

std::string helpOf(const CLI::App& app) {
  const std::string name =
      app.get_parent() ? std::string(kProgram) + " " + app.get_name() : app.get_name();
  return app.get_formatter()->make_help(&app, name, CLI::AppFormatMode::Normal);
}

// The headings and words that the parser itself puts into the help.
void translateParser(CLI::App& app) {
  CLI::FormatterBase& formatter = *app.get_formatter();
  formatter.label("Usage", say({40, "Usage"}));
  formatter.label("OPTIONS", say({41, "OPTIONS"}));
  formatter.label("SUBCOMMAND", say({42, "SUBCOMMAND"}));
  formatter.label("Positionals", say({43, "Positionals"}));
  formatter.label("REQUIRED", say({45, "REQUIRED"}));
  formatter.label("Excludes", say({46, "Excludes"}));
  formatter.label("Needs", say({49, "Needs"}));
  app.option_defaults()->group(say({47, "Options"}));
  app.set_help_flag("-h,--help", say({48, "Print this help message and exit"}));
}

// The option or name that the parser speaks of: the longest that is in its text, or, for a value
// that a flag cannot have, that begins it without the two dashes.
const CLI::Option* subjectOf(const CLI::App& app, std::string_view said) {
  const CLI::Option* found = nullptr;
  for (const CLI::Option* option : app.get_options()) {
    const std::string name = option->get_name();
    const bool begins = name.starts_with("--") && said.starts_with(name.substr(2) + " ");
    if (!begins && said.find(name) == std::string_view::npos) continue;
    if (!found || name.size() > found->get_name().size()) found = option;
  }
  return found;
}

// The options that a text names: "--all, --first".
std::string namesIn(const std::string& said) {
  std::istringstream words(said);
  std::string names;
  for (std::string word; words >> word;)
    if (word.starts_with('-')) (names += names.empty() ? "" : ", ") += word;
  return names;
}

std::string firstMissing(const CLI::App& app) {
  for (const CLI::Option* option : app.get_options())
    if (option->get_required() && option->count() == 0) return option->get_name();
  return {};
}

// The first "-o=value" among the options: the parser would take "=value".
std::string assigned(const std::vector<std::string>& arguments) {
  for (const std::string& word : arguments) {
    if (word == "--") break;
    if (word.size() > 2 && word[0] == '-' && word[1] != '-' && word[2] == '=') return word;
  }
  return {};
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

}  // namespace

std::wstring wide(const std::string& text) { return toWide(unmarked(text)); }

std::vector<std::wstring> wide(const std::vector<std::string>& texts) {
  std::vector<std::wstring> result;
  result.reserve(texts.size());
  for (const std::string& text : texts) result.push_back(wide(text));
  return result;
}

std::string emptiness(const std::string& text) {
  return text.empty() ? say({10, "an empty text is no name"}) : std::string();
}

CLI::Option* addText(CLI::App& app, const char* name, std::string& text, const Text& help,
                     const char* type) {
  return app.add_option(name, text, say(help))->check(emptiness)->type_name(type);
}

void addTexts(CLI::App& app, const char* name, std::vector<std::string>& texts, const Text& help,
              const char* type) {
  app.add_option(name, texts, say(help))
      ->allow_extra_args(false)
      ->check(emptiness)
      ->type_name(type);
}

void addTalkOptions(CLI::App& app, TalkOptions& options, const Text& verboseHelp) {
  app.add_flag("--json", options.json, say({11, "Answer with one JSON object on standard output"}));
  app.add_flag("-q,--quiet", options.quiet, say({12, "Say only what went wrong"}));
  app.add_flag("-v,--verbose", options.verbose, say(verboseHelp));
}

CommandLine::CommandLine(Console& console, TalkOptions& options, const Text& purpose,
                         const Text& generalHelp)
    : console_(console),
      options_(options),
      app_(say(purpose), kProgram),
      version_(std::string(kProgram) + " " + zoComVersion()) {
  app_.allow_windows_style_options(false);  // a slash begins a path
  app_.require_subcommand(0, 1);
  app_.option_defaults()->disable_flag_override();  // --quiet=1 is no form of --quiet
  app_.get_formatter()->column_width(28);
  app_.footer(say(generalHelp));
  translateParser(app_);
  app_.set_version_flag("--version", version_,
                        say({13, "Display program version information and exit"}));
}

CLI::App& CommandLine::addVerb(const char* name, const Text& summary) {
  CLI::App& verb = *app_.add_subcommand(name, say(summary));
  verb.group(say({44, "Subcommands"}));
  verb.get_help_ptr()->group(say({47, "Options"}));
  return verb;
}

void CommandLine::addHelp(const Text& verboseHelp) {
  CLI::App& help = addVerb("help", {14, "Show this, or the options of a verb"});
  help.add_option("VERB", topic_, say({15, "The verb"}))->type_name("");
  addTalkOptions(help, options_, verboseHelp);
  CLI::App& version = addVerb("version", {16, "Show the version"});
  addTalkOptions(version, options_, verboseHelp);
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
      alike += (alike.empty() ? "" : ", ") + name;
  }
  return alike.empty() ? say({20, "there is no verb %1"}, word)
                       : say({21, "there is no verb %1, but %2"}, word, alike);
}

std::string CommandLine::unexpected() const {
  const std::vector<std::string> words = app_.remaining(true);
  const std::string word = words.empty() ? std::string() : words[0];
  if (!word.starts_with('-')) return say({22, "%1 is one name too many"}, word);
  return say({23, "there is no option %1 here; a name that begins with - goes behind --"}, word);
}

std::string CommandLine::complaintOf(const CLI::App& app, const CLI::ParseError& error) {
  std::string said = error.what();
  if (dynamic_cast<const CLI::ValidationError*>(&error)) return said;  // the words of a check here
  if (dynamic_cast<const CLI::RequiredError*>(&error))
    return say({24, "%1 is missing"}, firstMissing(app));
  const CLI::Option* const option = subjectOf(app, said);
  if (!option) return said;
  const std::string name = option->get_name();
  if (dynamic_cast<const CLI::ExcludesError*>(&error))
    return say({25, "only one of these goes: %1"}, namesIn(said));
  if (dynamic_cast<const CLI::RequiresError*>(&error))
    return say({31, "one of these needs the other: %1"}, namesIn(said));
  if (option->get_expected_max() == 0) return say({26, "%1 takes no value"}, name);
  if (option->get_positional())
    return say({27, "%1: there must be %2"}, name, option->get_items_expected_min());
  return option->count() > 1 ? say({28, "%1 is there more than once"}, name)
                             : say({29, "%1 needs a value"}, name);
}

void CommandLine::expect(const std::vector<std::string>& arguments) {
  json_ = std::ranges::find(arguments, "--json") != arguments.end();
}

ExitCode CommandLine::wrong(const std::string& text) {
  options_.json = json_;
  Report report(options_, console_);
  report.fail(kUsage, {17, "%1; see `%2 help`"}, unmarked(text), kProgram);
  return report.finish();
}

ExitCode CommandLine::show(const char* key, const std::string& text, const std::string& line) {
  Report report(options_, console_);
  report.json()[key] = text;
  if (!options_.json) console_.out(line);
  return report.finish();
}

ExitCode CommandLine::showHelp() {
  const CLI::App* topic = topic_.empty() ? &app_ : verbOf(topic_);
  if (!topic) return wrong(unknownVerb(topic_));
  const std::string text = helpOf(*topic);
  return show("text", text, text);
}

ExitCode CommandLine::run(const std::vector<std::string>& arguments) {
  // The verb comes first: CLI11 would take a later word for it, be it the name of a file.
  const std::string first = arguments.empty() ? "" : arguments[0];
  if (first.empty()) return wrong(say({18, "say what to do"}));
  if (const CLI::App* verb = verbOf(first))
    options_.verb = verb->get_name();
  else if (!first.starts_with('-'))
    return wrong(unknownVerb(first));
  else if (first != "-h" && first != "--help" && first != "--version")
    return wrong(say({19, "the verb comes first, %1 behind it"}, first));
  if (const std::string word = assigned(arguments); !word.empty())
    return wrong(
        say({30, "%1: the value of a short option stands behind a blank, without ="}, word));
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
    const std::vector<CLI::App*> chosen = app_.get_subcommands();
    return wrong(complaintOf(chosen.empty() ? app_ : *chosen[0], error));
  }
  if (options_.verb == "version") return show("version", zoComVersion(), version_ + "\n");
  return options_.verb == "help" ? showHelp() : runVerb(*app_.get_subcommands().at(0));
}

}  // namespace zolib
