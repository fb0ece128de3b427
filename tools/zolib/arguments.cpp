#include "arguments.h"

#include <zo/system/dll_version.h>

#include <CLI/CLI.hpp>
#include <map>

#include "help.h"
#include "text.h"

namespace zolib {
namespace {

// What CLI11 fills: texts in UTF-8.
struct Raw {
  std::string library, filesFrom, name, output, dot, topic;
  std::vector<std::string> names, include, exclude;
};

std::vector<std::wstring> wide(const std::vector<std::string>& texts) {
  std::vector<std::wstring> result;
  for (const std::string& text : texts) result.push_back(toWide(text));
  return result;
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
  app.add_option("--name", raw.name, "The member that data from standard input becomes")
      ->type_name("NAME");
}

void addOverwrite(CLI::App& app, Options& options) {
  static const std::map<std::string, Overwrite> kWays{
      {"never", Overwrite::kNever}, {"always", Overwrite::kAlways}, {"newer", Overwrite::kNewer}};
  app.add_option("--overwrite", options.overwrite, "What exists already: never, always, or newer")
      ->transform(CLI::CheckedTransformer(kWays).description(""))
      ->type_name("WAY");
}

void addVerb(CLI::App& app, const Verb& verb, Options& options, Raw& raw) {
  CLI::App& sub = *app.add_subcommand(verb.name, verb.summary);
  if (*verb.alias) sub.alias(verb.alias);
  sub.footer(std::string("Examples:\n") + verb.examples);
  sub.add_option("LIBRARY", raw.library, "The library")->required()->type_name("");
  const unsigned int takes = verb.takes;
  if (takes & (kOneName | kTwoNames)) {
    sub.add_option("NAME", raw.names, verb.namesHelp)
        ->required()
        ->expected(takes & kOneName ? 1 : 2)
        ->type_name("");
  } else if (takes & kNames) {
    sub.add_option("NAME", raw.names, verb.namesHelp)->type_name("");
  }
  if (takes & kSelect) {
    sub.add_option("--include", raw.include, "Only what this pattern fits; may be repeated")
        ->expected(1)
        ->type_name("PATTERN");
    sub.add_option("--exclude", raw.exclude, "Not what this pattern fits; may be repeated")
        ->expected(1)
        ->type_name("PATTERN");
    sub.add_option("--files-from", raw.filesFrom,
                   "More names, one per line of this file; - is standard input")
        ->type_name("FILE");
  }
  if (takes & kFiles) addPackOptions(sub, options, raw);
  if ((takes & kFiles) || verb.name == std::string_view("extract")) addOverwrite(sub, options);
  if (verb.name == std::string_view("extract"))
    sub.add_option("-o,--output", raw.output, "The folder to extract to")->type_name("FOLDER");
  if (verb.name == std::string_view("info"))
    sub.add_option("--dot", raw.dot,
                   "Write a graph for Graphviz to this file; - is standard output")
        ->type_name("FILE");
  if (verb.name == std::string_view("list"))
    sub.add_flag("--names", options.namesOnly, "Only the names, one per line");
  if (verb.name == std::string_view("delete"))
    sub.add_flag("--physically", options.physically, "For good, by rewriting the file");
  if (takes & kDeletedToo) sub.add_flag("--deleted", options.deleted, "Deleted members, too");
  if (takes & kWrites) sub.add_flag("--dry-run", options.dryRun, "Only show what would be done");
  if (takes & kLocks)
    sub.add_option("--lock-timeout", options.lockSeconds,
                   "Seconds to wait while another program writes (default 5)")
        ->check(CLI::NonNegativeNumber.description(""))
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
  options.library = toWide(raw.library);
  options.names = wide(raw.names);
  options.include = wide(raw.include);
  options.exclude = wide(raw.exclude);
  options.memberName = toWide(raw.name);
  options.output = toWide(raw.output);
  const auto given = [&](const char* name) {
    const CLI::Option* option = sub.get_option_no_throw(name);
    return option && option->count() > 0;
  };
  if (given("--files-from")) options.filesFrom = toWide(raw.filesFrom);
  if (given("--dot")) options.dot = toWide(raw.dot);
}

std::string helpOf(const CLI::App& app) {
  const std::string name = app.get_parent() ? "zolib " + app.get_name() : app.get_name();
  return app.get_formatter()->make_help(&app, name, CLI::AppFormatMode::Normal);
}

ExitCode wrongUsage(Console& console, const std::string& text) {
  console.err("zolib: " + text + "; see `zolib help`");
  return kUsage;
}

ExitCode show(const Options& options, Console& console, const char* key, const std::string& text,
              const std::string& line) {
  Report report(options, console);
  report.json()[key] = text;
  if (!options.json) console.out(line);
  return report.finish();
}

}  // namespace

ExitCode runCommandLine(std::vector<std::string> arguments, Console& console) {
  Options options;
  Raw raw;
  CLI::App app("Keeps libraries: many members, packed, in one file.", "zolib");
  app.allow_windows_style_options(false);  // a slash begins a path
  app.require_subcommand(0, 1);
  app.get_formatter()->column_width(28);
  app.footer(kGeneralHelp);
  const std::string version = std::string("zolib ") + zoComVersion();
  app.set_version_flag("--version", version);
  for (const Verb& verb : verbs()) addVerb(app, verb, options, raw);
  CLI::App& help = *app.add_subcommand("help", "Show this, or the options of a verb");
  help.add_option("VERB", raw.topic, "The verb")->type_name("");
  addCommonOptions(help, options);
  CLI::App& about = *app.add_subcommand("version", "Show the version");
  addCommonOptions(about, options);

  try {
    std::reverse(arguments.begin(), arguments.end());
    app.parse(std::move(arguments));
  } catch (const CLI::CallForVersion&) {
    console.out(version + "\n");
    return kOk;
  } catch (const CLI::CallForHelp&) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    console.out(helpOf(chosen.empty() ? app : *chosen[0]));
    return kOk;
  } catch (const CLI::ParseError& error) {
    return wrongUsage(console, error.what());
  }
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  if (chosen.empty()) return wrongUsage(console, "say what to do");
  options.verb = chosen[0]->get_name();
  if (chosen[0] == &about) return show(options, console, "version", zoComVersion(), version + "\n");
  if (chosen[0] == &help) {
    const std::vector<CLI::App*> topics =
        app.get_subcommands([&](CLI::App* sub) { return sub->check_name(raw.topic); });
    if (!raw.topic.empty() && topics.empty())
      return wrongUsage(console, "there is no verb " + raw.topic);
    const CLI::App* topic = raw.topic.empty() ? &app : topics[0];
    const std::string text = helpOf(*topic);
    return show(options, console, "text", text, text);
  }
  take(options, raw, *chosen[0]);
  for (const Verb& verb : verbs()) {
    if (options.verb != verb.name) continue;
    if (const std::string text = complaint(verb, options); !text.empty())
      return wrongUsage(console, text);
    Report report(options, console);
    verb.run(options, report);
    return report.finish();
  }
  return kUsage;
}

}  // namespace zolib
