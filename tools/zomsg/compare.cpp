// Translations beside the original.
#include <algorithm>
#include <iterator>
#include <set>

#include "check.h"

namespace zomsg {
namespace {

// What a translation must keep of a text, as it is written in one.
struct Kept {
  std::set<std::wstring> arguments, references;
};

Kept keptOf(const MessageFile& file, unsigned int i) {
  Kept kept;
  for (const ZoMessageMark& mark : zoMessageMarks(file.map.text(i))) {
    if (mark.kind == ZoMessageMark::kReference) {
      const std::wstring name = mark.file.empty() ? file.parts.name : std::wstring(mark.file);
      kept.references.insert(folded(name) + L':' + std::to_wstring(mark.number));
    } else {
      kept.arguments.insert(L'%' + std::to_wstring(mark.number));
    }
  }
  return kept;
}

// Those of the one set that are not in the other, with a blank in front of each.
std::string without(const std::set<std::wstring>& all, const std::set<std::wstring>& others) {
  std::vector<std::wstring> left;
  std::ranges::set_difference(all, others, std::back_inserter(left));
  std::string text;
  for (const std::wstring& each : left) text += " " + toUtf8(each);
  return text;
}

class Comparison {
 public:
  Comparison(const MessageFile& original, const MessageFile& translation, Findings& findings)
      : original_(original), translation_(translation), findings_(findings) {}

  // Both are sorted by number.
  void run() {
    const ZoMessageMap& from = original_.map;
    const ZoMessageMap& to = translation_.map;
    unsigned int i = 0, k = 0;
    while (i < from.entries() || k < to.entries()) {
      const bool hasBoth = i < from.entries() && k < to.entries();
      if (hasBoth && from.number(i) == to.number(k)) {
        compare(i++, k++);
      } else if (k == to.entries() || (hasBoth && from.number(i) < to.number(k))) {
        missing(i++);
      } else {
        superfluous(k++);
      }
    }
  }

 private:
  // Named where the original has it: there is no line for it in the translation.
  void missing(unsigned int i) {
    findings_.add(original_, i, Level::kWarning, "untranslated",
                  "is not in " + toUtf8(translation_.parts.path()));
  }

  void superfluous(unsigned int k) {
    if (original_.faults.empty())  // else it may be what a fault cost
      findings_.add(translation_, k, Level::kWarning, "superfluous",
                    "is not in the original, " + toUtf8(original_.parts.path()));
  }

  void compare(unsigned int i, unsigned int k) {
    const Kept from = keptOf(original_, i), to = keptOf(translation_, k);
    say(k, Level::kError, "arguments", "lacks the original's",
        without(from.arguments, to.arguments));
    say(k, Level::kError, "arguments",
        "has what the original has not:", without(to.arguments, from.arguments));
    say(k, Level::kWarning, "references", "does not refer to",
        without(from.references, to.references));
    say(k, Level::kWarning, "references", "refers, as the original does not, to",
        without(to.references, from.references));
  }

  void say(unsigned int k, Level level, const char* kind, const std::string& what,
           const std::string& which) {
    if (!which.empty()) findings_.add(translation_, k, level, kind, what + which);
  }

  const MessageFile& original_;
  const MessageFile& translation_;
  Findings& findings_;
};

bool hasFileOf(const Group& group, const std::wstring& tag) {
  return std::ranges::any_of(
      group, [&](const MessageFile* file) { return folded(file->language()) == folded(tag); });
}

}  // namespace

void compareLanguages(const Group& group, Findings& findings) {
  for (const MessageFile* file : group) {
    if (!file->isMessageFile) continue;
    if (file != group.front()) Comparison(*group.front(), *file, findings).run();
    const std::wstring fallback(file->map.fallback().view());
    if (!fallback.empty() && !hasFileOf(group, fallback))
      findings.add({file, 1, 0, Level::kWarning, "fallback",
                    "falls back to " + toUtf8(fallback) + ", of which there is no file here"});
  }
}

}  // namespace zomsg
