#include "report.h"

#include <windows.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include "cancel.h"
#include "program.h"
#include "text.h"

namespace zolib {
namespace {

constexpr int kJsonVersion = 1;

// In JSON the word itself, in lines its text.
constexpr struct {
  std::string_view action;
  Text text;
} kActions[] = {
    {"added", {60, "added"}},
    {"replaced", {61, "replaced"}},
    {"kept", {62, "kept"}},
    {"extracted", {63, "extracted"}},
    {"refused", {64, "refused"}},
    {"deleted", {65, "deleted"}},
    {"recovered", {66, "recovered"}},
    {"renamed", {67, "renamed"}},
    {"removed", {68, "removed"}},
    {"salvaged", {69, "salvaged"}},
    {"hidden", {70, "hidden"}},
    {"lost", {71, "lost"}},
    {"read", {72, "read"}},
    {"ok", {73, "ok"}},
    {"damaged", {74, "damaged"}},
    {"unprotected", {75, "unprotected"}},
    {"new", {76, "new"}},
    {"changed", {77, "changed"}},
    {"gone", {78, "gone"}},
    {"same", {79, "same"}},
};

}  // namespace

Report::Report(const TalkOptions& options, Console& console)
    : options_(options), console_(console), members_(Json::array()) {
  json_[kProgram] = kJsonVersion;
  json_["verb"] = options.verb;
  if (!options.library.empty()) json_["library"] = toUtf8(options.library);
  json_["exit"] = 0;
  if (options.dryRun) json_["dryRun"] = true;
  json_["messages"] = Json::array();
}

void Report::message(std::string_view level, std::string_view text) {
  if (options_.json) json_["messages"].push_back({{"level", level}, {"text", text}});
  if (level != "note" || !options_.quiet)
    console_.err((level == "note" ? std::string() : kProgram + std::string(": ")) +
                 std::string(text));
}

void Report::note(std::string_view text) { message("note", text); }

void Report::warn(std::string_view text) {
  code_ = graver(code_, kWarnings);
  message("warning", text);
}

void Report::fail(ExitCode code, std::string_view text) {
  code_ = graver(code_, code);
  message("error", text);
}

void Report::cancelled() {
  if (!cancelSaid_) fail(kCancelled, {50, "cancelled; what was complete before is intact"});
  cancelSaid_ = true;
}

bool Report::goesOn() {
  if (isCancelled()) cancelled();
  return !isCancelled();
}

std::string Report::wordOf(std::string_view action) {
  for (const auto& row : kActions)
    if (row.action == action) return say(row.text);
  return std::string(action);
}

Json& Report::member(std::wstring_view name, std::string_view action, std::wstring_view to) {
  const auto counted = counts_.find(action);
  ++(counted == counts_.end() ? counts_[std::string(action)] : counted->second);
  if (options_.json) {
    Json& json = members_.emplace_back(Json{{"name", toUtf8(name)}, {"action", action}});
    if (!to.empty()) json["to"] = toUtf8(to);
    return json;
  }
  if (options_.dryRun || options_.verbose) {
    const std::string names = toUtf8(name) + (to.empty() ? "" : " -> " + toUtf8(to));
    const bool stays = action == "kept" || action == "refused";
    const std::string word = wordOf(action);
    if (options_.dryRun)
      console_.line((stays ? word : say({51, "would be %1"}, word)) + "  " + names);
    else
      console_.err(word + "  " + names);
  }
  if (!unused_.is_object() || !unused_.empty()) unused_ = Json::object();
  return unused_;
}

std::size_t Report::count(std::string_view action) const {
  const auto found = counts_.find(action);
  return found == counts_.end() ? 0 : found->second;
}

void Report::sumUpDryRun() {
  std::string all;
  for (const auto& row : kActions) {
    const std::size_t number = count(row.action);
    if (number) all += (all.empty() ? "" : ", ") + std::to_string(number) + " " + say(row.text);
  }
  if (!all.empty()) note({58, "in all: %1; as a dry run it changed nothing"}, all);
}

ExitCode Report::finish() {
  if (options_.dryRun && !options_.json) sumUpDryRun();
  if (options_.json) {
    if (!members_.empty() && !json_.contains("members")) json_["members"] = std::move(members_);
    json_["exit"] = static_cast<int>(code_);
    console_.out(json_.dump(1, ' ', false, Json::error_handler_t::replace) + "\n");
  }
  if (!console_.flush()) {
    code_ = graver(code_, kFailed);
    if (!console_.readerLeft())
      console_.err(std::string(kProgram) + ": " +
                   say({52, "cannot write the output (error %1); is the disk full?"},
                       console_.outputError()));
  }
  return code_;
}

void forgetReason() {
  SetLastError(ERROR_SUCCESS);
  ZoSystem::fileSystem().errorIO(toWide(kProgram).c_str());
}

namespace {

std::string textOf(DWORD error) {
  wchar_t text[256];
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, error, 0, text, 256, nullptr);
  return toUtf8({text, length});
}

// As a part of a line.
std::string trimmed(std::string text) {
  for (char& c : text) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  while (text.ends_with(' ') || text.ends_with('.')) text.pop_back();
  return text;
}

}  // namespace

std::string reason() {
  const std::string text = toUtf8(ZoSystem::fileSystem().errorTxt().view());
  if (text == textOf(ERROR_SUCCESS)) return {};
  if (text == textOf(ERROR_SHARING_VIOLATION)) return say({53, "another program has it open"});
  return trimmed(text);
}

bool isDamage(const std::string& reason) { return reason == trimmed(textOf(ERROR_FILE_CORRUPT)); }

bool isTooMuch(const std::string& reason) { return reason == trimmed(textOf(ERROR_NOT_SUPPORTED)); }

std::string because() {
  const std::string why = reason();
  return why.empty() ? std::string() : ": " + why;
}

std::string because(const Text& otherwise) {
  const std::string why = because();
  return why.empty() ? ": " + say(otherwise) : why;
}

}  // namespace zolib
