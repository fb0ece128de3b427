// What a run has to tell: messages, what became of each member, the exit code. As lines, or with
// --json as one object on standard output, whose first key, the tool's name, has the version of its
// form:
//
//   { "zolib": 1, "verb": "test", "library": "parts.lib", "exit": 13,
//     "messages": [ { "level": "error", "text": "..." } ], "members": [ ... ], ... }
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "console.h"
#include "exit_code.h"
#include "say.h"
#include "talk_options.h"

namespace zolib {

using Json = nlohmann::ordered_json;

// A step that may take long, and whose end nobody can tell before: it is named on a terminal for as
// long as this lives.
class Step {
 public:
  Step(Console& console, std::string_view text) : console_(console) { console.status(text); }
  Step(const Step&) = delete;
  Step& operator=(const Step&) = delete;
  ~Step() { console_.status({}); }

 private:
  Console& console_;
};

class Report {
 public:
  Report(const TalkOptions& options, Console& console);

  // Talk, which --quiet leaves out.
  void note(std::string_view text);
  // Something was left out by a rule; ends with kWarnings at least.
  void warn(std::string_view text);
  void fail(ExitCode code, std::string_view text);
  // The same, said in the user's language.
  template <class... Fillings>
  void note(const Text& text, const Fillings&... fillings) {
    note(say(text, fillings...));
  }
  template <class... Fillings>
  void warn(const Text& text, const Fillings&... fillings) {
    warn(say(text, fillings...));
  }
  template <class... Fillings>
  void fail(ExitCode code, const Text& text, const Fillings&... fillings) {
    fail(code, say(text, fillings...));
  }
  // Ends with this code at least; what there is to say is said elsewhere.
  void raise(ExitCode code) noexcept { code_ = graver(code_, code); }
  // What became of a member: "added", "extracted", as kActions has it; `to` is the name that it has
  // then, where that is another one. A line with --verbose, and with --dry-run, where it reads
  // "would be added". Gives its JSON object to add to.
  Json& member(std::wstring_view name, std::string_view action, std::wstring_view to = {});
  // How many members that was said of.
  [[nodiscard]] std::size_t count(std::string_view action) const;
  // The run was cancelled; said once.
  void cancelled();
  // False when it is to end: then it says so.
  [[nodiscard]] bool goesOn();
  // Nothing is named of less than a megabyte, nor with --quiet.
  template <class... Fillings>
  [[nodiscard]] Step step(std::uint64_t bytes, const Text& text, const Fillings&... fillings) {
    const bool isShown = bytes >= kLong && !options_.quiet;
    return {console_, isShown ? say(text, fillings...) : std::string()};
  }

  // The word for an action, in the user's language.
  [[nodiscard]] static std::string wordOf(std::string_view action);

  [[nodiscard]] Json& json() noexcept { return json_; }
  [[nodiscard]] Console& console() noexcept { return console_; }
  [[nodiscard]] ExitCode code() const noexcept { return code_; }
  // Writes what is left to write.
  ExitCode finish();

 private:
  static constexpr std::uint64_t kLong = 1'000'000;

  void message(std::string_view level, std::string_view text);
  // What a dry run would have done, in numbers.
  void sumUpDryRun();

  const TalkOptions& options_;
  Console& console_;
  Json json_, members_, unused_;
  std::map<std::string, std::size_t, std::less<>> counts_;
  ExitCode code_ = kOk;
  bool cancelSaid_ = false;
};

// The platform's reason for the last failure, as a part of a line; empty when it gave none since
// forgetReason().
void forgetReason();
std::string reason();
// Whether a reason is that a file is damaged.
bool isDamage(const std::string& reason);
// Whether it is that a change does not fit into one step.
bool isTooMuch(const std::string& reason);
// ": " and the reason, or else the text, if any.
std::string because();
std::string because(const Text& otherwise);

inline constexpr Text kRefused{54, "it was refused"};

}  // namespace zolib
