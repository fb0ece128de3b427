// extract: members to files below one folder, and never beside it.
#include <windows.h>
#include <zo/files/find_file.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <optional>
#include <unordered_map>

#include "cancel.h"
#include "names.h"
#include "places.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

class Extractor {
 public:
  Extractor(const Options& options, Report& report, Session& session)
      : options_(options), report_(report), session_(session), root_(shellPath(options.output)) {}

  // Whether there is a file to be written; its path then.
  std::optional<std::wstring> prepare(const ZoLibEntry& entry) {
    const std::wstring_view member = entry.name.view();
    if (const auto why = refusalOf(member)) {
      report_.member(member, "refused")["why"] = say(*why);
      // One that no name can be is called by its number.
      const std::string shown =
          member.empty() ? "@" + std::to_string(entry.ordinal) : toUtf8(member);
      report_.warn({250,
                    "refused to extract %1: %2; `zolib rename` gives it another name, `zolib cat` "
                    "its content"},
                   shown, say(*why));
      return std::nullopt;
    }
    const std::wstring name = nameOf(member);
    if (name.empty()) return std::nullopt;  // it lies in what is stripped
    std::wstring target = joined(root_, name);
    if (places_.hasFile(name)) {
      report_.member(member, "kept");
      report_.warn({258, "left %1 in the library: another member came out as %2"}, member, target);
      return std::nullopt;
    }
    // In the library's order, however many threads there are.
    if (const std::wstring taken = places_.takeIfFree(name); !taken.empty()) {
      report_.fail(kFailed,
                   {261,
                    "cannot extract %1 to %2: another member has %3 as a file or a folder, and it "
                    "cannot be both"},
                   member, target, taken);
      return std::nullopt;
    }
    if (!options_.dryRun && !makeFolder(target)) return std::nullopt;
    if (!keepsTarget(entry, target)) return target;
    report_.member(member, "kept");
    return std::nullopt;
  }

  // On any thread.
  int write(const ZoLibEntry& entry, const std::wstring& target) {
    return options_.dryRun ? 0 : session_->extractFile(entry, ZoFileName(target));
  }

  void finish(const ZoLibEntry& entry, const std::wstring& target, int code) {
    session_.progress().begin(toUtf8(entry.name.view()), entry.size);
    forgetReason();
    if (code && !isCancelled())
      code = session_.readAgain(
          entry, [&](const ZoLibEntry& now) { return write(now, target); });  // for the reason
    if (code == Session::kGone && !isCancelled())
      tellGone(session_, report_, entry.name.view());
    else if (code)
      reportFailure(entry, target, code);
    else
      report_.member(entry.name.view(), "extracted")["size"] = entry.size;
  }

  void sumUp(std::size_t hidden) {
    if (hidden)
      report_.warn({259,
                    "left %{?1 1 hidden member|%1 hidden members} in the library: another of the "
                    "name comes first; `zolib list --versions` shows the numbers to name them by"},
                   hidden);
    Json& json = report_.json();
    for (const char* action : {"extracted", "kept", "refused"})
      json[action] = report_.count(action);
    if (options_.dryRun) return;
    std::string text = say({251, "%1: %{?2 1 member|%2 members} extracted"}, session_.name(),
                           report_.count("extracted"));
    if (report_.count("kept")) text += ", " + say({205, "%1 kept"}, report_.count("kept"));
    report_.note(text);
  }

 private:
  // Of the file, below the target folder; without "." and "..".
  [[nodiscard]] std::wstring nameOf(std::wstring_view member) const {
    std::wstring name = memberName(member);
    if (options_.flat) return name.substr(folderOf(name).empty() ? 0 : folderOf(name).size() + 1);
    for (unsigned int level = 0; level < options_.strip && !name.empty(); ++level)
      name.erase(0, std::min(name.find(L'/'), name.size() - 1) + 1);
    return name;
  }

  bool keepsTarget(const ZoLibEntry& entry, const std::wstring& target) {
    // In a folder that was made just now nothing is to be kept.
    if (options_.overwrite == Overwrite::kAlways || isFresh_) return false;
    if (!ZoSystem::fileSystem().getAttributes(ZoFileName(target))) return false;
    ZoFindFile find;
    if (find.open(ZoFileName(target)) || !find.next()) return false;
    if (options_.overwrite == Overwrite::kNewer)
      return ticks(entry.written) <= ticks(find.lastWriteTime());
    if (options_.overwrite == Overwrite::kUnsaid)
      report_.warn({252, "kept %1: it exists; say --overwrite always or newer"}, target);
    return true;
  }

  bool makeFolder(const std::wstring& target) {
    const std::wstring folder(folderOf(target));
    const auto [known, isNew] = folders_.try_emplace(folded(folder), false);
    if (isNew && !folder.empty()) {
      forgetReason();
      const ZoFileName name(folder);
      ZoFileSystem& files = ZoSystem::fileSystem();
      if (!(files.getAttributes(name) & FILE_ATTRIBUTE_DIRECTORY)) {
        if (files.createDirectory(name)) {
          folders_.erase(known);
          report_.fail(kFailed, {253, "cannot make the folder %1%2"}, folder, because());
          return false;
        }
        known->second = true;
      }
    }
    isFresh_ = known->second;
    return true;
  }

  void reportFailure(const ZoLibEntry& entry, const std::wstring& target, int code) {
    const std::string why = reason();  // before the next call has another one
    const std::wstring_view name = entry.name.view();
    if (why.empty() && !session_->wasCancelled() && session_->verify(entry)) {
      report_.fail(kDamaged, {254, "cannot extract %1 from %2: it is damaged; nothing was written"},
                   name, session_.name());
    } else {
      const unsigned int there = ZoSystem::fileSystem().getAttributes(ZoFileName(target));
      const bool isFolder = (there & FILE_ATTRIBUTE_DIRECTORY) != 0;
      session_.reportFailure(say({255, "cannot extract %1 to %2"}, name, target), code,
                             isFolder ? say({260, "there is a folder of that name"}) : why,
                             there && !isFolder
                                 ? say({256, "is that one read-only, or open in a program?"})
                                 : std::string());
    }
  }

  const Options& options_;
  Report& report_;
  Session& session_;
  std::wstring root_;
  Places places_;  // of what came out
  // That are there; and whether they were made in this run: nothing of another's is in these.
  std::unordered_map<std::wstring, bool> folders_;
  bool isFresh_ = false;  // the folder of the member in hand
};

}  // namespace

void extract(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const ZoFileName root(shellPath(options.output));
  const unsigned int target = root.isEmpty() ? 0 : ZoSystem::fileSystem().getAttributes(root);
  if (target && !(target & FILE_ATTRIBUTE_DIRECTORY)) {
    report.fail(kFailed, {257, "%1 is a file; name a folder to extract to"}, options.output);
    return;
  }
  const std::vector<ZoLibEntry> entries = session.select(Session::kLive);
  std::uint64_t total = 0;
  for (const ZoLibEntry& entry : entries) total += entry.size;
  session.progress().expect(total);
  Extractor extractor(options, report, session);
  std::vector<std::wstring> targets(entries.size());
  std::vector<int> codes(entries.size());
  std::size_t hidden = 0;
  const auto prepare = [&](std::size_t i) -> std::optional<std::uint64_t> {
    if (isCancelled()) report.cancelled();
    if (report.code() == kCancelled) return std::nullopt;
    if (session.isPassedOver(entries[i])) return ++hidden, std::nullopt;
    const std::optional<std::wstring> path = extractor.prepare(entries[i]);
    if (!path) return std::nullopt;
    targets[i] = *path;
    return session.memoryToRead(entries[i]);
  };
  const auto write = [&](std::size_t i, unsigned int) {
    codes[i] = extractor.write(entries[i], targets[i]);
  };
  const auto finish = [&](std::size_t i) {
    extractor.finish(entries[i], targets[i], codes[i]);
    targets[i].clear();
    return report.code() != kCancelled;
  };
  inOrder(entries.size(), session.crew(), prepare, write, finish, [] {});
  if (isCancelled()) report.cancelled();
  extractor.sumUp(hidden);
  session.reportTrailing(kWarnings);
}

}  // namespace zolib
