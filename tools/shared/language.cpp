#include "language.h"

#include <cstdlib>
#include <optional>

#include "program.h"
#include "say.h"

namespace zolib {
namespace {

// It is wanted before anything is said, the verb's help too: so it may stand before the verb.
std::optional<std::string> takeLanguage(std::vector<std::string>& arguments) {
  constexpr std::string_view kName = "--language";
  std::optional<std::string> language;
  for (auto word = arguments.begin(); word != arguments.end() && *word != "--";) {
    const bool isAssigned = word->starts_with(kName) && word->substr(kName.size(), 1) == "=";
    if (!isAssigned && (*word != kName || word + 1 == arguments.end())) {
      ++word;
      continue;
    }
    language = isAssigned ? word->substr(kName.size() + 1) : *(word + 1);
    word = arguments.erase(word, word + (isAssigned ? 1 : 2));
  }
  return language;
}

std::string fromEnvironment() {
  const char* const language = std::getenv("ZOLIB_LANGUAGE");
  return language ? language : std::string();
}

}  // namespace

std::string speakAsAsked(std::vector<std::string>& arguments) {
  const std::optional<std::string> language = takeLanguage(arguments);
  const bool isKnown = speak(toWide(language ? *language : fromEnvironment()), toWide(kProgram));
  return language && !isKnown ? say({33, "%1 is no language such as de-AT"}, *language)
                              : std::string();
}

void addLanguage(CLI::App& app) {
  const auto ignore = [](const std::string&) {};
  app.add_option_function<std::string>("--language", ignore,
                                       say({32, "Say everything in this language: en, de"}))
      ->check(emptiness)
      ->type_name("TAG");
}

}  // namespace zolib
