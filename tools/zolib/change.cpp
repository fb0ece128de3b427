// delete, recover, rename: members that stay where they are.
#include <windows.h>
#include <zo/library/library_results.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "cancel.h"
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

}  // namespace

void remove(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToWrite()) return;
  std::vector<ZoLibEntry> entries = session.select(Session::kLive);
  // From behind: the last member goes by a cut, without rewriting the file.
  if (options.physically) std::reverse(entries.begin(), entries.end());
  for (const ZoLibEntry& entry : entries) {
    if (!goesOn(report)) break;
    forgetReason();
    // The call takes the first of a name and every further one with it.
    if (!options.dryRun && !session->contains(entry.name)) continue;
    const int code = options.dryRun ? 0 : session->deleteFile(entry.name, options.physically);
    if (!code)
      report.member(entry.name.view(), "deleted");
    else
      session.reportFailure(say({300, "cannot delete %1"}, entry.name.view()), code);
  }
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

}  // namespace

void recover(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToWrite()) return;
  const std::vector<ZoLibEntry> entries =
      chosen(session.select(Session::kDeleted), options.recover);
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
  sumUp(options, report, session, "recovered", {303, "%1: %{?2 1 member|%2 members} recovered"});
  session.close();
}

// A member; or a folder, with all that is below it.
void rename(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToWrite()) return;
  const std::wstring& from = options.names[0];
  std::wstring to = options.names[1];
  const bool isMember = session->contains(ZoFileName(from));
  while (!isMember && (to.ends_with(L'/') || to.ends_with(L'\\'))) to.pop_back();
  const std::optional<Text> refusal = refusalOf(to);
  to = memberName(to);  // "a/./b" is no name that a file can have
  std::vector<std::pair<ZoFileName, std::wstring>> renames;
  if (isMember) {
    renames.emplace_back(ZoFileName(from), to);
  } else {
    const std::wstring folder = folded(from) + (folded(from).ends_with(L'/') ? L"" : L"/");
    for (const ZoLibEntry& entry : session.select(Session::kLive, {})) {
      const std::wstring_view name = entry.name.view();
      if (folded(name).starts_with(folder))
        renames.emplace_back(entry.name, to + L"/" + std::wstring(name.substr(folder.size())));
    }
  }
  if (renames.empty())
    report.fail(kNotFound, {109, "%1 has no member %2; `zolib list` shows what it has"},
                session.name(), from);
  if (refusal) {
    report.fail(kFailed, {305, "cannot rename anything to %1: %2"}, options.names[1],
                say(*refusal));
    renames.clear();
  }
  for (const auto& [name, newName] : renames) {
    if (!goesOn(report)) break;
    forgetReason();
    const ZoFileName target(newName);
    int code = options.dryRun ? 0 : session->renameFile(name, target);
    if (options.dryRun && session->contains(target) && name != target)
      code = ZoResult::memberExists;
    if (!code)
      report.member(name.view(), "renamed")["to"] = toUtf8(newName);
    else
      session.reportFailure(say({306, "cannot rename %1 to %2"}, name.view(), newName), code,
                            say({307, "is the new name one for a member?"}));
  }
  sumUp(options, report, session, "renamed", {304, "%1: %{?2 1 member|%2 members} renamed"});
  session.close();
}

}  // namespace zolib
