#include "sync.h"

#include <zo/files/find_file.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "cancel.h"
#include "glob.h"
#include "names.h"
#include "same.h"
#include "text.h"
#include "verbs.h"

namespace zolib {

bool areFolders(const Options& options, Report& report) {
  bool areAll = true;
  for (const std::wstring& name : options.names) {
    forgetReason();
    const unsigned int attributes =
        ZoSystem::fileSystem().getAttributes(ZoFileName(shellPath(name)));
    if (attributes & ZoFindFile::kDirectory) continue;
    areAll = false;
    if (attributes)
      report.fail(kFailed, {212, "%1 is no folder"}, name);
    else
      report.fail(kNotFound, {150, "cannot find %1%2; check the name"}, name, because());
  }
  return areAll;
}

std::vector<ZoLibEntry> goneFrom(const Options& options, Session& session,
                                 const std::vector<Source>& sources) {
  std::unordered_set<std::wstring> there;
  for (const Source& source : sources) there.insert(source.key);
  std::vector<std::wstring> folders;
  for (const std::wstring& name : options.names) {
    const std::wstring member = memberName(name);
    if (!member.empty()) folders.push_back(member);
  }
  if (folders.size() < options.names.size()) folders.clear();  // one of them is all
  return session.select(Session::kLive, folders, Session::kMayBeNone, [&](const ZoLibEntry& entry) {
    return !there.contains(folded(entry.name.view()));
  });
}

void removeGone(const Options& options, Report& report, Session& session,
                const std::vector<Source>& sources) {
  if (!session.isOpen()) return;
  const std::vector<ZoLibEntry> gone = goneFrom(options, session, sources);
  forgetReason();
  std::size_t refused = 0;
  const int code =
      options.dryRun || gone.empty() ? 0 : session->deleteFiles(gone, ZoLibrary::kByMark, &refused);
  if (code)
    return session.reportFailure(
        say({300, "cannot delete %1"}, gone[std::min(refused, gone.size() - 1)].name.view()), code);
  for (const ZoLibEntry& entry : gone) report.member(entry.name.view(), "deleted");
}

namespace {

class Comparison {
 public:
  Comparison(const Options& options, Report& report, Session& session)
      : options_(options), report_(report), session_(session) {}

  void compare(const Source& source, const ZoLibEntry* entry) {
    if (!entry) return tell("new", source.member);
    session_.progress().begin(toUtf8(source.member), source.size);
    forgetReason();
    const std::optional<bool> same = isSame(source, session_, *entry);
    if (isCancelled()) return report_.cancelled();
    if (!same) {
      report_.fail(kFailed, {213, "cannot compare %1%2"}, source.path, because(kRefused));
    } else if (*same) {
      report_.member(source.member, "same");
    } else {
      tell("changed", source.member);
    }
  }

  // A line each on standard output: it is what was asked for.
  void tell(const char* action, std::wstring_view member) {
    const bool says = !options_.json && !options_.verbose;
    if (says) report_.console().line(Report::wordOf(action) + "  " + toUtf8(member));
    report_.member(member, action);
    report_.raise(kWarnings);
  }

  void sumUp() {
    for (const char* action : {"same", "changed", "new", "gone"})
      report_.json()[action] = report_.count(action);
    report_.note({214, "%1: %2 the same, %3 changed, %4 new, %5 gone"}, session_.name(),
                 report_.count("same"), report_.count("changed"), report_.count("new"),
                 report_.count("gone"));
  }

 private:
  const Options& options_;
  Report& report_;
  Session& session_;
};

}  // namespace

void diff(const Options& options, Report& report) {
  if (!areFolders(options, report)) return;
  const std::vector<Source> sources = findSources(options, report);
  Session session(options, report);
  if (!session.openToRead()) return;
  std::uint64_t total = 0;
  for (const Source& source : sources) total += source.size;
  session.progress().expect(total);
  Comparison comparison(options, report, session);
  for (const Source& source : sources) {
    if (isCancelled()) report.cancelled();
    if (report.code() == kCancelled) return;
    ZoLibEntry entry;
    const bool exists = session->getEntry(ZoFileName(source.member), entry) == 0;
    comparison.compare(source, exists ? &entry : nullptr);
  }
  for (const ZoLibEntry& entry : goneFrom(options, session, sources))
    comparison.tell("gone", entry.name.view());
  comparison.sumUp();
}

}  // namespace zolib
