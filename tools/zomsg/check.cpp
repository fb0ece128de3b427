// check: the faults of message files, and what their languages do not have in common.
#include "check.h"

#include <zo/system/codepage.h>
#include <zo/system/registry.h>

#include <algorithm>
#include <map>
#include <string_view>

#include "cancel.h"
#include "verbs.h"

namespace zomsg {
namespace {

constexpr const char* kKinds[] = {"",       "head",      "character", "directive",    "codepage",
                                  "number", "duplicate", "escape",    "continuation", "reference",
                                  "plural", "length"};

const char* kindOf(ZoMessageFault::Reason reason) {
  const auto at = static_cast<std::size_t>(reason);
  return at < std::size(kKinds) ? kKinds[at] : "other";
}

void addFaults(const MessageFile& file, Findings& findings) {
  for (const ZoMessageFault& fault : file.faults)
    findings.add({&file, fault.line, fault.column, Level::kError, kindOf(fault.reason),
                  toUtf8(fault.text())});
  if (file.faults.size() == ZoMessageMap::kMaxFaults)
    findings.add({&file, file.faults.back().line, 0, Level::kError, "more",
                  "more faults than are listed; mend these first"});
}

// The value of the directive, and its line.
struct Directive {
  unsigned int line = 0;
  std::wstring value;
};
Directive directiveOf(const Lines& lines, std::wstring_view name) {
  constexpr std::wstring_view kBlanks = L" \t";
  for (std::size_t i = 1; i <= lines.count(); ++i) {
    std::wstring_view line = lines[i];
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    if (line.starts_with(name)) {
      line.remove_prefix(name.size());
      const std::size_t start = std::min(line.find_first_not_of(kBlanks), line.size());
      if (start == 0) continue;
      line.remove_prefix(start);
      return {static_cast<unsigned int>(i),
              std::wstring(line.substr(0, line.find_first_of(kBlanks)))};
    }
    if (!line.empty() && line.front() != L'#' && line.front() != L'@') break;
  }
  return {};
}

// Bytes that are likely something else than they were read as.
void checkEncoding(const MessageFile& file, Findings& findings) {
  ZoCodepage& codepages = ZoSystem::codepage();
  const unsigned int codepage = file.map.codepage();
  unsigned int likely = 0, mark = 0, said = codepage;
  ZoCodepage::Certainty certainty{};
  if (codepages.detect(file.bytes, likely, mark, certainty)) return;
  const Directive directive = directiveOf(file.lines, L"@codepage");
  const auto name = [&](unsigned int which) {
    ZoString text;
    return codepages.nameOf(which, text) == 0 ? toUtf8(text.view()) : std::to_string(which);
  };
  const auto warn = [&](const std::string& text) {
    findings.add({&file, std::max(directive.line, 1U), 0, Level::kWarning, "encoding", text});
  };
  if (directive.line && codepages.find(directive.value.c_str(), said) == 0 && said != codepage)
    warn("the file says " + name(said) + ", but its bytes are " + name(codepage));
  else if (directive.line && codepage != likely && certainty == ZoCodepage::kLikely)
    warn("is read as " + name(codepage) + ", as it says, but its bytes are likely " + name(likely));
  else if (!directive.line && certainty == ZoCodepage::kAssumed && codepage != ZoCodepage::kUtf8)
    warn("is read in the code page of this machine, " + name(codepage) +
         "; save it as UTF-8, or say @codepage");
}

// What the name and the file say of its language.
void checkLanguage(const MessageFile& file, bool hasPlurals, Findings& findings) {
  const std::wstring named = folded(file.parts.tag), said = folded(file.map.language().view());
  const auto primary = [](std::wstring_view tag) { return tag.substr(0, tag.find(L'-')); };
  if (said.empty() && (!named.empty() || hasPlurals))
    findings.add({&file, 1, 0, Level::kWarning, "language",
                  "has no @language; its plurals are then checked as if they were English"});
  else if (!named.empty() && primary(named) != primary(said))
    findings.add({&file, directiveOf(file.lines, L"@language").line, 0, Level::kError, "language",
                  "is of the language " + toUtf8(said) + ", but its name says " + toUtf8(named)});
}

// Whether there are plurals.
bool checkPlurals(const MessageFile& file, Findings& findings) {
  const unsigned int wanted = file.map.pluralForms();
  const std::string language = toUtf8(file.map.language().view());
  bool hasPlurals = false;
  for (unsigned int i = 0; i < file.map.entries(); ++i) {
    for (const ZoMessageMark& mark : zoMessageMarks(file.map.text(i))) {
      if (mark.kind != ZoMessageMark::kPlural) continue;
      hasPlurals = true;
      if (language.empty() || (mark.forms >= wanted && mark.forms <= wanted + 1)) continue;
      const bool isTooMany = mark.forms > wanted;
      findings.add(file, i, isTooMany ? Level::kError : Level::kWarning, "plural",
                   "has a plural with " + counted(mark.forms, "form") + "; " + language + " has " +
                       std::to_string(wanted) +
                       (isTooMany ? ", and the last ones never show" : ""));
    }
  }
  return hasPlurals;
}

// The languages of each name, the original first: NAME.msg, or else English, or else the most
// messages.
std::vector<Group> groupsOf(const MessageFiles& files, Findings& findings) {
  std::map<std::pair<std::wstring, std::wstring>, Group> byName;
  for (const MessageFile& file : files) {
    Group& group = byName[{folded(file.parts.folder), folded(file.parts.name)}];
    const auto isTwin = [&](const MessageFile* other) {
      return folded(other->path) == folded(file.path);
    };
    if (std::ranges::any_of(group, isTwin))
      findings.add(
          {&file, 1, 0, Level::kError, "file", "another file has this name in other case"});
    else
      group.push_back(&file);
  }
  std::vector<Group> groups;
  for (auto& [name, group] : byName) {
    const auto rank = [](const MessageFile* file) {
      const int kind = file->parts.tag.empty() ? 0 : folded(file->parts.tag) == L"en" ? 1 : 2;
      return std::tuple(!file->isMessageFile, kind, kind < 2 ? 0 : ~file->map.entries());
    };
    std::ranges::stable_sort(group, {}, rank);
    groups.push_back(std::move(group));
  }
  return groups;
}

}  // namespace

void checkFile(const MessageFile& file, Findings& findings) {
  addFaults(file, findings);
  if (!file.isMessageFile) return;
  checkEncoding(file, findings);
  checkLanguage(file, checkPlurals(file, findings), findings);
}

void check(const Options& options, Report& report) {
  MessageFiles files;
  for (const std::wstring& folder : options.folders) readFolder(folder, files, report);
  Findings findings;
  std::size_t id = 0;
  for (MessageFile& file : files) {
    if (zolib::isCancelled()) return report.cancelled();
    file.firstId = id;
    id += file.map.entries();
    if (options.verbose) report.note(toUtf8(file.path));
    checkFile(file, findings);
  }
  const std::vector<Group> groups = groupsOf(files, findings);
  for (const Group& group : groups) compareLanguages(group, findings);
  followReferences(groups, findings);
  findings.tell(files, options, report);
}

}  // namespace zomsg
