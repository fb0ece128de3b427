// The command line of zomsg: the tool for translators of message files.
#include "command_line.h"
#include "message_file.h"
#include "program.h"
#include "verbs.h"

namespace zomsg {
namespace {

using zolib::addText;
using zolib::CommandLine;
using zolib::Console;
using zolib::ExitCode;
using zolib::Text;

// This tool speaks English.
constexpr Text kGeneralHelp = {
    0,
    "Message files are NAME.LANGUAGE.msg, and NAME.msg, the original.\n"
    "\n"
    "Exit codes: 0 ok, 1 done with warnings, 2 failed, 7 usage, 10 not found, 12 not a message "
    "file,\n"
    "13 faulty message files, 130 cancelled.\n"
    "\n"
    "Examples:\n"
    "  zomsg extract parts.msg --language de\n"
    "  zomsg check .\n"
    "  zomsg show parts.msg 17 Bolt 3 --language de\n"
    "\n"
    "`zomsg help VERB` has the options and examples of a verb, the manual page zomsg(1) all.\n"};

constexpr Text kVerboseHelp{0, "Name each file"};

struct Verb {
  const char* name;
  const char* summary;
  void (*run)(const Options&, Report&);
  const char* examples;
};

constexpr Verb kVerbs[] = {
    {"check", "Name the faults of all message files of folders, and compare their languages", check,
     "  zomsg check messages\n"
     "  zomsg check messages ../shared/messages --strict   1 when there are warnings\n"},
    {"show", "Show a text as its users see it", show,
     "  zomsg show messages/parts.msg 17 --language de\n"
     "  zomsg show parts.de.msg 17 Bolt 3 'Length 1/2 in'\n"},
    {"extract", "Make or renew the file of a language, for its translator", extract,
     "  zomsg extract parts.msg --language de              makes parts.de.msg\n"
     "  zomsg extract parts.msg --language de --force      again, when parts.msg has changed\n"
     "  zomsg extract parts.msg --language de --output -   shows what it would be\n"},
};

// What CLI11 fills: texts in UTF-8.
struct Raw {
  std::vector<std::string> folders, arguments;
  std::string file, number, language, output;
};

std::string noLanguage(const std::string& text) {
  return isLanguageTag(zolib::toWide(text)) ? std::string()
                                            : text + " is no language such as de-AT";
}

class ZomsgCommandLine final : public CommandLine {
 public:
  explicit ZomsgCommandLine(Console& console)
      : CommandLine(console, options_, {0, "Checks, shows and prepares message files."},
                    kGeneralHelp) {
    for (const Verb& verb : kVerbs) add(verb);
    addHelp(kVerboseHelp);
  }

 private:
  void add(const Verb& verb) {
    CLI::App& sub = addVerb(verb.name, {0, verb.summary});
    sub.footer(std::string("Examples:\n") + verb.examples);
    const std::string_view name = verb.name;
    if (name == "check") {
      sub.add_option("FOLDER", raw_.folders, "The folders with the files")
          ->required()
          ->check(zolib::emptiness)
          ->type_name("");
      sub.add_flag("--strict", options_.strict, "Warnings count: they end with 1");
    } else {
      addText(sub, "FILE", raw_.file,
              {0, name == "show" ? "The message file, in any language" : "The original"}, "")
          ->required();
      CLI::Option* const language =
          sub.add_option("--language", raw_.language, "The language, such as de or de-AT")
              ->check(noLanguage)
              ->type_name("TAG");
      if (name == "extract") addExtract(sub, *language);
    }
    if (name == "show") {
      addText(sub, "NUMBER", raw_.number, {0, "The message; 0x and -1 are read, too"}, "")
          ->required();
      sub.add_option("ARGUMENT", raw_.arguments, "Numbers and texts for %1, %2, ...")
          ->type_name("");
    }
    zolib::addTalkOptions(sub, options_, kVerboseHelp);
  }

  void addExtract(CLI::App& sub, CLI::Option& language) {
    language.required();
    addText(sub, "-o,--output", raw_.output, {0, "Another file to write; - is standard output"},
            "FILE");
    sub.add_flag("--force", options_.force, "Renew a file that exists; its translations are kept");
  }

  ExitCode runVerb(const CLI::App& sub) override {
    options_.folders = zolib::wide(raw_.folders);
    options_.arguments = zolib::wide(raw_.arguments);
    options_.file = zolib::wide(raw_.file);
    options_.number = zolib::wide(raw_.number);
    options_.language = zolib::wide(raw_.language);
    if (!raw_.output.empty()) options_.output = zolib::wide(raw_.output);
    if (sub.get_name() == "show" && !messageNumber(options_.number))
      return wrong(raw_.number + " is no number of a message");
    return zolib::runNamed(zolib::verbNamed(kVerbs, options_.verb), options_, console());
  }

  Options options_;
  Raw raw_;
};

}  // namespace
}  // namespace zomsg

namespace zolib {

const char* const kProgram = "zomsg";

ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console) {
  return zomsg::ZomsgCommandLine(console).run(arguments);
}

}  // namespace zolib
