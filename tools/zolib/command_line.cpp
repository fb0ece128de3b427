#include "command_line.h"

#include <zo/system/dll_version.h>

#include <algorithm>
#include <numeric>

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
  return text.empty() ? "an empty text is no name" : std::string();
}

CLI::Option* addText(CLI::App& app, const char* name, std::string& text, const char* help,
                     const char* type) {
  return app.add_option(name, text, help)->check(emptiness)->type_name(type);
}

void addTexts(CLI::App& app, const char* name, std::vector<std::string>& texts, const char* help,
              const char* type) {
  app.add_option(name, texts, help)->allow_extra_args(false)->check(emptiness)->type_name(type);
}

void addTalkOptions(CLI::App& app, TalkOptions& options, const char* verboseHelp) {
  app.add_flag("--json", options.json, "Answer with one JSON object on standard output");
  app.add_flag("-q,--quiet", options.quiet, "Say only what went wrong");
  app.add_flag("-v,--verbose", options.verbose, verboseHelp);
}

CommandLine::CommandLine(Console& console, TalkOptions& options, const char* purpose,
                         const char* generalHelp)
    : console_(console),
      options_(options),
      app_(purpose, kProgram),
      version_(std::string(kProgram) + " " + zoComVersion()) {
  app_.allow_windows_style_options(false);  // a slash begins a path
  app_.require_subcommand(0, 1);
  app_.get_formatter()->column_width(28);
  app_.footer(generalHelp);
  app_.set_version_flag("--version", version_);
}

void CommandLine::addHelp(const char* verboseHelp) {
  CLI::App& help = *app_.add_subcommand("help", "Show this, or the options of a verb");
  help.add_option("VERB", topic_, "The verb")->type_name("");
  addTalkOptions(help, options_, verboseHelp);
  addTalkOptions(*app_.add_subcommand("version", "Show the version"), options_, verboseHelp);
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
  report.fail(kUsage, unmarked(text) + "; see `" + kProgram + " help`");
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
  return options_.verb == "help" ? showHelp() : runVerb(*app_.get_subcommands().at(0));
}

}  // namespace zolib
