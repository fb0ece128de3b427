// delete, recover, rename: members that stay where they are.
#include <windows.h>
#include <zo/library/library_results.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "cancel.h"
#include "glob.h"
#include "names.h"
#include "places.h"
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

// Whether one is deleted already, as only a number can name it.
bool refusesDeleted(Report& report, const std::vector<ZoLibEntry>& entries) {
  const auto gone = std::ranges::find_if(entries, &ZoLibEntry::isDeleted);
  if (gone == entries.end()) return false;
  report.fail(kFailed,
              {309, "cannot delete %1: it is deleted already; --physically removes it for good"},
              gone->name.view());
  return true;
}

}  // namespace

void remove(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.namesAny() || !session.openToWrite()) return;
  const std::vector<ZoLibEntry> entries =
      session.select(options.versions ? Session::kBoth : Session::kLive);
  const ZoLibrary::Deletion how = options.versions     ? ZoLibrary::kAllVersions
                                  : options.physically ? ZoLibrary::kPhysically
                                                       : ZoLibrary::kByMark;
  const bool isRefused = how == ZoLibrary::kByMark && refusesDeleted(report, entries);
  forgetReason();
  std::size_t refused = entries.size();
  const bool works = goesOn(report) && !options.dryRun && !entries.empty() && !isRefused;
  if (const int code = works ? session->deleteFiles(entries, how, &refused) : 0)
    reportFailure(session, {300, "cannot delete %1"}, entries, refused, code);
  else if (goesOn(report) && !isRefused)
    tellDeleted(report, entries, options.versions);
  sumUp(options, report, session, "deleted", {301, "%1: %{?2 1 member|%2 members} deleted"});
  session.close();
}

namespace {

// "bolts/m8.dwg" as "bolts/m8~1.dwg": the first such name that no member has, and that is not
// taken.
std::wstring numbered(Session& session, std::wstring_view name,
                      std::unordered_set<std::wstring>& taken) {
  const std::size_t dot = name.find_last_of(L'.'), slash = name.find_last_of(L"\\/");
  const bool hasExtension =
      dot != std::wstring_view::npos && (slash == std::wstring_view::npos || dot > slash + 1);
  const std::wstring_view stem = hasExtension && dot != 0 ? name.substr(0, dot) : name;
  for (unsigned int number = 1;; ++number) {
    const std::wstring wanted = std::wstring(stem) + L"~" + std::to_wstring(number) +
                                std::wstring(name.substr(stem.size()));
    if (!session->contains(ZoFileName(wanted)) && taken.insert(folded(wanted)).second)
      return wanted;
  }
}

// Those to be recovered, in the file's order: of each name one or, with --all, each. One that was
// named by its number is meant.
std::vector<ZoLibEntry> chosen(std::vector<ZoLibEntry> deleted, Recover which,
                               const Session& session) {
  if (which == Recover::kAll) return deleted;
  std::unordered_set<std::wstring> names;
  const auto isFurther = [&](const ZoLibEntry& entry) {
    return !names.insert(folded(entry.name.view())).second && !session.isNumbered(entry);
  };
  if (which == Recover::kFirst) {
    std::erase_if(deleted, isFurther);
    return deleted;
  }
  deleted.erase(deleted.begin(),
                std::remove_if(deleted.rbegin(), deleted.rend(), isFurther).base());
  return deleted;
}

// The names that they come back under: with --all the latest of each has its own, where no member
// has that, and the others have numbers.
std::vector<ZoLibRename> namesFor(const std::vector<ZoLibEntry>& entries, Recover which,
                                  Session& session) {
  std::unordered_map<std::wstring, std::size_t> latest;
  std::unordered_set<std::wstring> taken;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    latest[folded(entries[i].name.view())] = i;
    taken.insert(folded(entries[i].name.view()));
  }
  std::vector<ZoLibRename> result;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const ZoFileName& name = entries[i].name;
    const bool isLatest = latest[folded(name.view())] == i;
    const bool keepsName = which != Recover::kAll || (isLatest && !session->contains(name));
    result.push_back(
        {name, keepsName ? name : ZoFileName(numbered(session, name.view(), taken)), &entries[i]});
  }
  return result;
}

// Whether each of them fits beside the members that are there.
bool fitsBack(const std::vector<ZoLibRename>& members, Session& session, Report& report) {
  Places places(session);
  for (const ZoLibRename& one : members) {
    const std::wstring taken = places.takeIfFree(one.newName.view());
    if (taken.empty()) continue;
    report.fail(kFailed,
                {312,
                 "cannot recover %1: the library has %2 as a file or a folder, and it cannot be "
                 "both"},
                one.newName.view(), taken);
    return false;
  }
  return true;
}

// With --dry-run what can be told of it.
int recoverAll(const Options& options, Session& session, const std::vector<ZoLibRename>& members,
               std::size_t& refused) {
  if (!options.dryRun) return session->recoverFilesAs(members, &refused);
  for (refused = 0; refused < members.size(); ++refused)
    if (session->contains(members[refused].newName)) return ZoResult::memberExists;
  return ZoResult::ok;
}

}  // namespace

// All of them, in one step.
void recover(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.namesAny() || !session.openToWrite()) return;
  const std::vector<ZoLibEntry> entries =
      chosen(session.select(Session::kDeleted), options.recover, session);
  if (!entries.empty() && goesOn(report)) {
    const std::vector<ZoLibRename> members = namesFor(entries, options.recover, session);
    const bool fits = fitsBack(members, session, report);
    forgetReason();
    std::size_t refused = entries.size();
    if (const int code = fits ? recoverAll(options, session, members, refused) : 0) {
      reportFailure(session, {302, "cannot recover %1"}, entries, refused, code);
    } else if (fits) {
      for (const ZoLibRename& member : members) {
        const bool isSame = member.newName.view() == member.member.view();
        report.member(member.member.view(), "recovered", isSame ? L"" : member.newName.view());
      }
    }
  }
  sumUp(options, report, session, "recovered", {303, "%1: %{?2 1 member|%2 members} recovered"});
  session.close();
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
    all.reserve(renamings.size());
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

// Whether each new name fits beside those of the members that stay.
bool fitsIn(const std::vector<Renaming>& renamings, Session& session, Report& report) {
  std::unordered_set<std::wstring> leaving;
  for (const Renaming& one : renamings) leaving.insert(folded(one.entry.name.view()));
  Places places(session, leaving);
  for (const Renaming& one : renamings) {
    const std::wstring taken = places.takeIfFree(one.to);
    if (taken.empty()) continue;
    report.fail(kFailed,
                {311,
                 "cannot rename %1 to %2: the library has %3 as a file or a folder, and it cannot "
                 "be both"},
                one.entry.name.view(), one.to, taken);
    return false;
  }
  return true;
}

// Whether there is something to rename; what is deleted is named by its number alone.
bool isThere(const std::vector<Renaming>& renamings, const std::wstring& from, Session& session,
             Report& report) {
  if (!renamings.empty() && !renamings[0].entry.isDeleted()) return true;
  if (renamings.empty())
    report.fail(kNotFound, {109, "%1 has no member %2; `zolib list` shows what it has"},
                session.name(), from);
  else
    report.fail(kFailed,
                {310,
                 "cannot rename %1: it is deleted; `zolib recover` brings it back, with --all also "
                 "beside a member of its name"},
                renamings[0].entry.name.view());
  return false;
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
  if (isThere(renamings, from, session, report) && goesOn(report) &&
      fitsIn(renamings, session, report)) {
    forgetReason();
    std::size_t refused = 0;
    if (const int code = renameAll(options, session, renamings, refused)) {
      const Renaming& one = renamings[std::min(refused, renamings.size() - 1)];
      session.reportFailure(say({306, "cannot rename %1 to %2"}, one.entry.name.view(), one.to),
                            code, say({307, "is the new name one for a member?"}));
    } else {
      for (const Renaming& one : renamings) report.member(one.entry.name.view(), "renamed", one.to);
    }
  }
  sumUp(options, report, session, "renamed", {304, "%1: %{?2 1 member|%2 members} renamed"});
  session.close();
}

}  // namespace zolib
