// extract: the file of a language, with the original above each text, for its translator.
#include <zo/files/file_save.h>
#include <zo/files/find_file.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <unordered_map>

#include "message_file.h"
#include "paths.h"
#include "verbs.h"

namespace zomsg {
namespace {

// Before the comments that are made anew each time.
constexpr std::wstring_view kOurs = L"#:";
// The original that a translation was made of, where it has changed; stays until the translator
// takes it away.
constexpr std::wstring_view kBefore = L"#: Before: ";

// The messages as they are written in a file, by number.
std::unordered_map<unsigned int, std::wstring> writtenOf(const ZoMessageMap& map) {
  std::unordered_map<unsigned int, std::wstring> texts;
  ZoString whole;
  static_cast<void>(map.write(whole));
  std::wstring_view rest = whole.view();
  while (!rest.empty()) {
    const std::wstring_view line = rest.substr(0, rest.find(L'\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    const std::size_t tab = line.find(L'\t');
    if (tab == std::wstring_view::npos) continue;
    if (const auto number = messageNumber(line.substr(0, tab)))
      texts.emplace(static_cast<unsigned int>(*number), line.substr(tab + 1));
  }
  return texts;
}

bool isComment(std::wstring_view line) {
  const std::size_t start = line.find_first_not_of(L" \t");
  return start != std::wstring_view::npos && line[start] == L'#';
}

class NewFile {
 public:
  NewFile(const MessageFile& original, const MessageFile* existing, const std::wstring& language)
      : original_(original), existing_(existing), originals_(writtenOf(original.map)) {
    if (existing) translations_ = writtenOf(existing->map);
    head(language);
  }

  // All numbers of the original, and then what the translation has besides.
  std::wstring make() {
    const ZoMessageMap& from = original_.map;
    for (unsigned int i = 0; i < from.entries(); ++i) message(i);
    if (!existing_) return std::move(text_);
    const ZoMessageMap& to = existing_->map;
    for (unsigned int k = 0; k < to.entries(); ++k) {
      if (from.contains(to.number(k))) continue;
      if (superfluous_++ == 0) line(std::wstring(kOurs) + L" Not in the original:");
      translation(k, existing_->numberText(k), nullptr);
    }
    return std::move(text_);
  }

  [[nodiscard]] std::size_t kept() const noexcept { return kept_; }
  [[nodiscard]] std::size_t superfluous() const noexcept { return superfluous_; }
  [[nodiscard]] std::size_t changed() const noexcept { return changed_; }

 private:
  void line(std::wstring_view text) { (text_ += text) += L'\n'; }

  void head(const std::wstring& language) {
    line(L"@messages 1");
    line(L"@language " + language);
    if (existing_ && !existing_->map.fallback().isEmpty())
      line(L"@fallback " + std::wstring(existing_->map.fallback().view()));
    line(std::wstring(kOurs) + L" Comments like this one are made by zomsg extract. Take away the");
    line(std::wstring(kOurs) + L" # before a number, and translate behind it what stands above.");
  }

  void message(unsigned int i) {
    const unsigned int number = original_.map.number(i);
    text_ += L'\n';
    const std::wstring& original = originals_[number];
    line(std::wstring(kOurs) + L' ' + original);
    const std::wstring_view word = original_.numberText(i);
    if (existing_ && existing_->map.contains(number)) {
      while (next_ < existing_->map.entries() && existing_->map.number(next_) < number) ++next_;
      translation(next_, word, &original);
    } else {
      line(L'#' + std::wstring(word));
    }
  }

  // With the comments that the translator has put above it.
  void translation(unsigned int k, std::wstring_view word, const std::wstring* original) {
    const Lines& lines = existing_->lines;
    const unsigned int at = existing_->map.line(k);
    unsigned int first = at;
    while (isComment(lines[first - 1])) --first;
    std::wstring before;
    for (; first < at; ++first) {
      const std::wstring_view comment = lines[first];
      if (isTranslators(comment))
        line(comment);
      else if (comment.starts_with(kBefore))
        before = comment;
      else if (original && before.empty() && comment.starts_with(L"#: ") &&
               comment.substr(3) != *original)
        before = std::wstring(kBefore).append(comment.substr(3));
    }
    if (!before.empty()) line(before);
    changed_ += !before.empty();
    line(std::wstring(word) + L'\t' + translations_[existing_->map.number(k)]);
    ++kept_;
  }

  // A comment that is not made here: neither one of ours, nor a number without its text.
  static bool isTranslators(std::wstring_view comment) {
    return !comment.starts_with(kOurs) && !messageNumber(comment.substr(1));
  }

  const MessageFile& original_;
  const MessageFile* existing_;
  std::unordered_map<unsigned int, std::wstring> originals_, translations_;
  std::wstring text_;
  unsigned int next_ = 0;  // of the existing file: both are sorted
  std::size_t kept_ = 0, superfluous_ = 0, changed_ = 0;
};

bool exists(const std::wstring& path) {
  return ZoSystem::fileSystem().getAttributes(ZoFileName(zolib::shellPath(path))) != 0;
}

std::wstring fullPath(const std::wstring& path) {
  ZoFileName full;
  const std::wstring shells = zolib::shellPath(path);
  if (ZoSystem::fileSystem().getFullPathName(ZoFileName(shells), full)) return folded(shells);
  return folded(full.view());
}

// What is rewritten must be sound: a faulty line would be lost.
bool readSound(const std::wstring& path, MessageFile& file, Report& report) {
  if (!readMessageFile(path, file, report)) return false;
  if (!file.isMessageFile) {
    report.fail(zolib::kNotALibrary, toUtf8(path) + " is no message file");
    return false;
  }
  if (file.faults.empty()) return true;
  const ZoMessageFault& fault = file.faults.front();
  report.fail(zolib::kDamaged, toUtf8(path) + ":" + std::to_string(fault.line) + ":" +
                                   std::to_string(fault.column) + ": " + toUtf8(fault.text()) +
                                   "; mend it first, see `zomsg check`");
  return false;
}

// Whole or not at all.
bool save(const std::wstring& path, const std::string& bytes, Report& report) {
  zolib::forgetReason();
  ZoFileSave save;
  const auto size = static_cast<unsigned int>(bytes.size());
  if (save.open(ZoFileName(zolib::shellPath(path))) == 0 &&
      save.file().write(bytes.data(), size) == size && save.commit() == 0)
    return true;
  report.fail(zolib::kFailed, "cannot write " + toUtf8(path) +
                                  zolib::because({0, "is it read-only, or open in a program?"}) +
                                  (exists(path) ? "; it is as it was" : ""));
  return false;
}

void tell(const NewFile& file, std::size_t count, const std::wstring& target, Report& report) {
  const std::size_t kept = file.kept() - file.superfluous();
  zolib::Json& json = report.json();
  json["output"] = toUtf8(target);
  json["count"] = count;
  json["translated"] = kept;
  json["superfluous"] = file.superfluous();
  json["changed"] = file.changed();
  std::string text = counted(count, "message") + ", " + std::to_string(kept) + " translated";
  if (file.changed()) text += ", " + std::to_string(file.changed()) + " from another original";
  if (file.superfluous())
    text += ", and " + std::to_string(file.superfluous()) + " that the original has not";
  report.note((target == L"-" ? "" : toUtf8(target) + ": ") + text);
}

}  // namespace

void extract(const Options& options, Report& report) {
  MessageFile original, existing;
  if (!readSound(options.file, original, report)) return;
  FileParts parts = original.parts;
  parts.tag = options.language;
  const std::wstring usual = parts.path(), target = options.output.value_or(usual);
  const bool isToOutput = target == L"-";
  if (fullPath(options.file) == fullPath(usual) || fullPath(options.file) == fullPath(target))
    return report.fail(zolib::kUsage,
                       toUtf8(options.file) + " is the original; name another language");
  if (!isToOutput && !options.force && exists(target))
    return report.warn("kept " + toUtf8(target) +
                       ": it exists; say --force to renew it with its translations");
  // What is to be renewed has the translations, or else the language's file beside the original.
  const std::wstring& source = !isToOutput && exists(target) ? target : usual;
  const bool hasExisting = exists(source);
  if (hasExisting && !readSound(source, existing, report)) return;
  NewFile file(original, hasExisting ? &existing : nullptr, options.language);
  const std::string bytes = toUtf8(file.make());
  if (isToOutput) {
    if (options.json)
      report.json()["text"] = bytes;
    else
      report.console().out(bytes);
  } else if (!save(target, bytes, report)) {
    return;
  }
  tell(file, original.map.entries(), target, report);
}

}  // namespace zomsg
