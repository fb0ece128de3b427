// delete, recover, rename: members that stay where they are.
#include <windows.h>
#include <zo/library/library_results.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "cancel.h"
#include "glob.h"
#include "names.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

bool goesOn(Report& report) {
  if (isCancelled()) report.cancelled();
  return report.code() != kCancelled;
}

void sumUp(const Options& options, Report& report, const Session& session,
           const std::string& action, const Text& sum) {
  report.json()[action] = report.count(action);
  if (!options.dryRun) report.note(sum, session.name(), report.count(action));
}

// All of them were left as they were.
void reportFailure(Session& session, const Text& text, const std::vector<ZoLibEntry>& entries,
                   std::size_t refused, int code) {
  const std::string which =
      refused < entries.size() ? toUtf8(entries[refused].name.view()) : say({308, "all of them"});
  session.reportFailure(say(text, which), code);
}

// Each of them, or each name once.
void tellDeleted(Report& report, const std::vector<ZoLibEntry>& entries, bool byName) {
  std::unordered_set<std::wstring> told;
  for (const ZoLibEntry& entry : entries)
    if (!byName || told.insert(folded(entry.name.view())).second)
      report.member(entry.name.view(), "deleted");
}

}  // namespace

void remove(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToWrite()) return;
  const std::vector<ZoLibEntry> entries =
      session.select(options.versions ? Session::kBoth : Session::kLive);
  const ZoLibrary::Deletion how = options.versions     ? ZoLibrary::kAllVersions
                                  : options.physically ? ZoLibrary::kPhysically
                                                       : ZoLibrary::kByMark;
  forgetReason();
  std::size_t refused = entries.size();
  const bool works = goesOn(report) && !options.dryRun && !entries.empty();
  if (const int code = works ? session->deleteFiles(entries, how, &refused) : 0)
    reportFailure(session, {300, "cannot delete %1"}, entries, refused, code);
  else if (goesOn(report))
    tellDeleted(report, entries, options.versions);
  sumUp(options, report, session, "deleted", {301, "%1: %{?2 1 member|%2 members} deleted"});
  session.close();
}

namespace {

// "bolts/m8.dwg" as "bolts/m8~1.dwg": the first such name that no member has.
std::wstring numbered(Session& session, std::wstring_view name) {
  const std::size_t dot = name.find_last_of(L'.'), slash = name.find_last_of(L"\\/");
  const bool hasExtension =
      dot != std::wstring_view::npos && (slash == std::wstring_view::npos || dot > slash + 1);
  const std::wstring_view stem = hasExtension && dot != 0 ? name.substr(0, dot) : name;
  for (unsigned int number = 1;; ++number) {
    const std::wstring wanted = std::wstring(stem) + L"~" + std::to_wstring(number) +
                                std::wstring(name.substr(stem.size()));
    if (!session->contains(ZoFileName(wanted))) return wanted;
  }
}

// Those to be recovered, in the file's order: of each name one or, with --all, each.
std::vector<ZoLibEntry> chosen(std::vector<ZoLibEntry> deleted, Recover which) {
  if (which == Recover::kAll) return deleted;
  std::unordered_set<std::wstring> names;
  const auto isFurther = [&](const ZoLibEntry& entry) {
    return !names.insert(folded(entry.name.view())).second;
  };
  if (which == Recover::kFirst) {
    std::erase_if(deleted, isFurther);
    return deleted;
  }
  deleted.erase(deleted.begin(),
                std::remove_if(deleted.rbegin(), deleted.rend(), isFurther).base());
  return deleted;
}

int recoverOne(Session& session, const ZoLibEntry& entry, const std::wstring& newName) {
  const int code = session->recoverFile(entry);
  if (code || newName.empty()) return code;
  return session->renameFile(entry.name, ZoFileName(newName));
}

// One of each name, in one step.
void recoverTogether(Report& report, Session& session, const std::vector<ZoLibEntry>& entries) {
  if (entries.empty() || !goesOn(report)) return;
  forgetReason();
  std::size_t refused = entries.size();
  if (const int code = session->recoverFiles(entries, false, &refused))
    return reportFailure(session, {302, "cannot recover %1"}, entries, refused, code);
  for (const ZoLibEntry& entry : entries) report.member(entry.name.view(), "recovered");
}

void endRecovery(const Options& options, Report& report, Session& session) {
  sumUp(options, report, session, "recovered", {303, "%1: %{?2 1 member|%2 members} recovered"});
  session.close();
}

}  // namespace

void recover(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToWrite()) return;
  const std::vector<ZoLibEntry> entries =
      chosen(session.select(Session::kDeleted), options.recover);
  if (options.recover != Recover::kAll && !options.dryRun) {
    recoverTogether(report, session, entries);
    return endRecovery(options, report, session);
  }
  std::unordered_map<std::wstring, std::size_t> latest;
  for (std::size_t i = 0; i < entries.size(); ++i) latest[folded(entries[i].name.view())] = i;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const ZoLibEntry& entry = entries[i];
    if (!goesOn(report)) break;
    forgetReason();
    const bool isLatest = latest[folded(entry.name.view())] == i;
    const std::wstring newName = isLatest ? L"" : numbered(session, entry.name.view());
    int code = options.dryRun ? 0 : recoverOne(session, entry, newName);
    if (options.dryRun && session->contains(entry.name)) code = ZoResult::memberExists;
    if (code) {
      session.reportFailure(say({302, "cannot recover %1"}, entry.name.view()), code);
      continue;
    }
    Json& json = report.member(entry.name.view(), "recovered");
    if (!newName.empty()) json["to"] = toUtf8(newName);
  }
  endRecovery(options, report, session);
}

namespace {

struct Renaming {
  ZoLibEntry entry;
  std::wstring to;
};

// The one member of that name or number; or all that are in the folder of that name.
std::vector<Renaming> renamingsOf(Session& session, const std::wstring& from,
                                  const std::wstring& to) {
  ZoLibEntry entry;
  if (session->getEntry(ZoFileName(from), entry) == ZoResult::ok) return {{entry, to}};
  std::vector<Renaming> renamings;
  if (entryNumber(from)) {
    for (const ZoLibEntry& named : session.select(Session::kLive, {from}, Session::kMayBeNone))
      renamings.push_back({named, to});
    return renamings;
  }
  const std::wstring folder = folded(from) + (folded(from).ends_with(L'/') ? L"" : L"/");
  for (const ZoLibEntry& inside : session.select(Session::kLive, {})) {
    const std::wstring_view name = inside.name.view();
    if (folded(name).starts_with(folder))
      renamings.push_back({inside, to + L"/" + std::wstring(name.substr(folder.size()))});
  }
  return renamings;
}

// All of them, in one step. `refused` is the first that cannot be.
int renameAll(const Options& options, Session& session, const std::vector<Renaming>& renamings,
              std::size_t& refused) {
  if (!options.dryRun) {
    std::vector<ZoLibRename> all;
    for (const Renaming& one : renamings)
      all.push_back({one.entry.name, ZoFileName(one.to), &one.entry});
    return session->renameFiles(all, &refused);
  }
  for (refused = 0; refused < renamings.size(); ++refused) {
    const ZoFileName target(renamings[refused].to);
    if (session->contains(target) && renamings[refused].entry.name != target)
      return ZoResult::memberExists;
  }
  return ZoResult::ok;
}

}  // namespace

// A member; or a folder, with all that is below it.
void rename(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToWrite()) return;
  const std::wstring& from = options.names[0];
  std::wstring to = options.names[1];
  const bool isMember = session->contains(ZoFileName(from));
  while (!isMember && (to.ends_with(L'/') || to.ends_with(L'\\'))) to.pop_back();
  if (const auto why = refusalOf(to)) {
    report.fail(kFailed, {305, "cannot rename anything to %1: %2"}, options.names[1], say(*why));
    return;
  }
  const std::vector<Renaming> renamings = renamingsOf(session, from, memberName(to));
  if (renamings.empty())
    report.fail(kNotFound, {109, "%1 has no member %2; `zolib list` shows what it has"},
                session.name(), from);
  if (goesOn(report) && !renamings.empty()) {
    forgetReason();
    std::size_t refused = 0;
    if (const int code = renameAll(options, session, renamings, refused)) {
      const Renaming& one = renamings[std::min(refused, renamings.size() - 1)];
      session.reportFailure(say({306, "cannot rename %1 to %2"}, one.entry.name.view(), one.to),
                            code, say({307, "is the new name one for a member?"}));
    } else {
      for (const Renaming& one : renamings)
        report.member(one.entry.name.view(), "renamed")["to"] = toUtf8(one.to);
    }
  }
  sumUp(options, report, session, "renamed", {304, "%1: %{?2 1 member|%2 members} renamed"});
  session.close();
}

}  // namespace zolib
