// extract: members to files below one folder, and never beside it.
#include <windows.h>
#include <zo/files/find_file.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <unordered_map>

#include "cancel.h"
#include "names.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

class Extractor {
 public:
  Extractor(const Options& options, Report& report, Session& session)
      : options_(options), report_(report), session_(session), root_(shellPath(options.output)) {}

  void extract(const ZoLibEntry& entry) {
    const std::wstring_view member = entry.name.view();
    session_.progress().begin(toUtf8(member), entry.size);
    if (const auto why = refusalOf(member)) {
      report_.member(member, "refused")["why"] = say(*why);
      report_.warn({250,
                    "refused to extract %1: %2; `zolib rename` gives it another name, `zolib cat` "
                    "its content"},
                   member, say(*why));
      return;
    }
    const std::wstring target = joined(root_, memberName(member));  // "a/./b" as a/b
    if (!options_.dryRun && !makeFolder(target)) return;
    if (keepsTarget(entry, target)) {
      report_.member(member, "kept");
      return;
    }
    if (!options_.dryRun && !write(entry, target)) return;
    report_.member(member, "extracted")["size"] = entry.size;
  }

  void sumUp() {
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

  bool write(const ZoLibEntry& entry, const std::wstring& target) {
    forgetReason();
    const int code = session_->extractFile(entry.name, ZoFileName(target));
    if (!code) return true;
    const std::string why = reason();  // before the next call has another one
    const std::wstring_view name = entry.name.view();
    if (why.empty() && !session_->wasCancelled() && session_->verify(entry)) {
      report_.fail(kDamaged, {254, "cannot extract %1 from %2: it is damaged; nothing was written"},
                   name, session_.name());
    } else {
      const bool exists = ZoSystem::fileSystem().getAttributes(ZoFileName(target)) != 0;
      session_.reportFailure(
          say({255, "cannot extract %1 to %2"}, name, target), code, why,
          exists ? say({256, "is that one read-only, or open in a program?"}) : std::string());
    }
    return false;
  }

  const Options& options_;
  Report& report_;
  Session& session_;
  std::wstring root_;
  // That are there; and whether they were made in this run. Members of one name come out once, so
  // that nothing in these is there twice.
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
  const std::vector<bool> hidden = Session::hidden(entries);
  std::uint64_t total = 0;
  for (const ZoLibEntry& entry : entries) total += entry.size;
  session.progress().expect(total);
  Extractor extractor(options, report, session);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (isCancelled()) report.cancelled();
    if (report.code() == kCancelled) break;
    if (!hidden[i]) extractor.extract(entries[i]);
  }
  extractor.sumUp();
  session.reportTrailing(kWarnings);
}

}  // namespace zolib
