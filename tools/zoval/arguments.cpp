// The command line of zoval: the tool that shows and changes stored values.
#include <algorithm>

#include "command_line.h"
#include "language.h"
#include "program.h"
#include "text.h"
#include "value_file.h"
#include "verbs.h"

namespace zoval {
namespace {

using zolib::addText;
using zolib::CommandLine;
using zolib::Console;
using zolib::ExitCode;
using zolib::say;
using zolib::Text;

constexpr Text kGeneralHelp{
    101,
    "A value lies in a file in text form, as an archive, in XML or JSON, or in a member of a\n"
    "library.\n"
    "\n"
    "Exit codes: 0 ok, 1 values differ, or done with warnings, 2 failed, 7 usage, 10 not found,\n"
    "11 locked, 13 no value or damaged, 130 cancelled.\n"
    "\n"
    "Examples:\n"
    "  zoval show part.zoa\n"
    "  zoval get part.zoa bolts/0/length\n"
    "  zoval diff old.txt new.txt --tolerance 0.001\n"
    "\n"
    "`zoval help VERB` has the options and examples of a verb, the manual page zoval(1) all.\n"};

constexpr Text kVerboseHelp{102, "Name each file that is written"};

enum Takes : unsigned int {
  kPath = 0x1,  // a path in the value
  kValue = 0x2,
  kSecond = 0x4,  // another file
  kWrites = 0x8,
};

struct Verb {
  const char* name;
  Text summary;
  void (*run)(const Options&, Report&);
  unsigned int takes;
  Text second;  // its help
  Text examples;
};

constexpr Verb kVerbs[] = {
    {"show",
     {110, "Show a value in text form"},
     show,
     0,
     {},
     {111,
      "  zoval show part.zoa\n"
      "  zoval show 'parts.lib|bolts/m8.zoa'                as --member bolts/m8.zoa\n"}},
    {"get",
     {112, "Show the value at a path, for scripts"},
     get,
     kPath,
     {},
     {113,
      "  zoval get part.zoa bolts/0/length\n"
      "  zoval get part.zoa name --json                    with its type and flags\n"}},
    {"set",
     {114, "Put a value at a path, and write the file anew in one step"},
     set,
     kPath | kValue | kWrites,
     {},
     {115,
      "  zoval set part.zoa bolts/0/length 30               stays a length\n"
      "  zoval set part.zoa origin 'Point (1, 2, 3)'\n"
      "  zoval set 'parts.lib|m8.zoa' name 'M8 x 30'\n"}},
    {"edit",
     {141, "Edit a value in a window, and write the file anew in one step"},
     edit,
     kWrites,
     {},
     {142,
      "  zoval edit part.zoa\n"
      "  zoval edit part.zoa --against old.zoa             what differs, side by side\n"}},
    {"diff",
     {116, "Tell what differs between two values; ends with 1 where something does"},
     diff,
     kSecond,
     {117, "The value that it became"},
     {118,
      "  zoval diff old.txt new.zoa\n"
      "  zoval diff old.lib new.lib --member m8.zoa --any-order --json\n"}},
    {"convert",
     {119, "Write a value in another form"},
     convert,
     kSecond | kWrites,
     {120, "The file to write; - is standard output"},
     {121,
      "  zoval convert part.txt part.json\n"
      "  zoval convert part.zoa - --to text\n"}},
    {"graph",
     {122, "Draw a value for Graphviz"},
     graph,
     0,
     {},
     {123,
      "  zoval graph part.zoa | dot -Tsvg >part.svg\n"
      "  zoval graph part.zoa --path bolts --output bolts.dot\n"}},
};

// What CLI11 fills: texts in UTF-8.
struct Raw {
  std::string file, second, path, value, member, from, to, output;
};

std::string noForm(const std::string& text) {
  return formNamed(zolib::toWide(text))
             ? std::string()
             : say({124, "%1 is no form: text, archive, xml, json"}, text);
}

std::string noTolerance(const std::string& text) {
  double value = -1;
  return CLI::detail::lexical_cast(text, value) && value >= 0
             ? std::string()
             : say({138, "%1 is no number from 0 on"}, text);
}

class ZovalCommandLine final : public CommandLine {
 public:
  explicit ZovalCommandLine(Console& console)
      : CommandLine(console, options_, {100, "Shows, compares and changes stored values."},
                    kGeneralHelp) {
    for (const Verb& verb : kVerbs) add(verb);
    addHelp(kVerboseHelp);
    zolib::addLanguage(app());
  }

 private:
  void add(const Verb& verb) {
    CLI::App& sub = addVerb(verb.name, verb.summary);
    sub.footer(say({125, "Examples:"}) + "\n" + say(verb.examples));
    const std::string_view name = verb.name;
    addText(sub, "FILE", raw_.file, {126, "The file, or LIBRARY|MEMBER, or a library"}, "")
        ->required();
    if (verb.takes & kPath)
      sub.add_option("PATH", raw_.path, say({127, "Keys and positions with slashes between them"}))
          ->required()
          ->type_name("");
    if (verb.takes & kValue)
      sub.add_option("VALUE", raw_.value, say({128, "A number, a text, or a value in text form"}))
          ->required()
          ->type_name("");
    if (verb.takes & kSecond) addText(sub, "OTHER", raw_.second, verb.second, "")->required();
    addText(sub, "-m,--member", raw_.member, {129, "The member, where a file is a library"},
            "NAME");
    sub.add_option("--from", raw_.from,
                   say({130, "The form to read: text, archive, xml, json; else it is found"}))
        ->check(noForm)
        ->type_name("FORM");
    if (name == "convert")
      sub.add_option("--to", raw_.to,
                     say({131, "The form to write; else by .txt, .zov, .zoa, .xml, .json"}))
          ->check(noForm)
          ->type_name("FORM");
    if (name == "edit") addEdit(sub);
    if (name == "diff") addDiff(sub);
    if (name == "graph") {
      sub.add_option("--path", raw_.path, say({132, "Only what lies there"}))->type_name("PATH");
      addText(sub, "-o,--output", raw_.output, {133, "The file to write; else standard output"},
              "FILE");
    }
    if (verb.takes & kWrites)
      sub.add_flag("--dry-run", options_.dryRun, say({134, "Only show what would be done"}));
    zolib::addTalkOptions(sub, options_, kVerboseHelp);
    zolib::addLanguage(sub);
  }

  void addEdit(CLI::App& sub) {
    sub.add_flag("--read-only", options_.readOnly, say({139, "Only look at it"}));
    addText(sub, "--against", raw_.second, {140, "Another value, to see what differs"}, "FILE");
  }

  void addDiff(CLI::App& sub) {
    sub.add_flag("--any-order", options_.anyOrder,
                 say({135, "The order of sequences does not count"}));
    sub.add_flag("--values", options_.valuesOnly, say({136, "Types and flags do not count"}));
    sub.add_option("--tolerance", options_.tolerance,
                   say({137, "How far numbers may be apart (default 0)"}))
        ->check(noTolerance)
        ->type_name("NUMBER");
  }

  ExitCode runVerb(const CLI::App&) override {
    options_.file = zolib::wide(raw_.file);
    options_.second = zolib::wide(raw_.second);
    options_.path = zolib::wide(raw_.path);
    options_.value = zolib::wide(raw_.value);
    options_.member = zolib::wide(raw_.member);
    options_.from = zolib::wide(raw_.from);
    options_.to = zolib::wide(raw_.to);
    if (!raw_.output.empty()) options_.output = zolib::wide(raw_.output);
    return zolib::runNamed(zolib::verbNamed(kVerbs, options_.verb), options_, console());
  }

  Options options_;
  Raw raw_;
};

}  // namespace
}  // namespace zoval

namespace zolib {

const char* const kProgram = "zoval";

ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console) {
  return runInLanguage<zoval::ZovalCommandLine>(arguments, console);
}

}  // namespace zolib
