// reorganize, salvage: a library written anew.
#include <zo/library/library_results.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include "cancel.h"
#include "names.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {

void reorganize(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToWrite()) return;
  const std::uint64_t before = session.fileSize();
  std::uint64_t deleted = 0;
  for (const ZoLibEntry& entry : session.select(Session::kDeleted)) {
    ++deleted;
    if (options.dryRun) report.member(entry.name.view(), "removed");
  }
  session.progress().expect(before);
  session.progress().begin(session.name(), before);
  forgetReason();
  const int code = options.dryRun || report.code() ? 0 : session->reorganize();
  if (code) session.reportFailure(say({350, "cannot reorganize %1"}, session.name()), code);
  session.close();
  const std::uint64_t after = session.fileSize();
  Json& json = report.json();
  json["removed"] = code ? 0 : deleted;
  json["sizeBefore"] = before;
  json["sizeAfter"] = after;
  if (!code && !report.code() && !options.dryRun)
    report.note({351, "%1: %{?2 1 deleted member|%2 deleted members} removed; %3 before, %4 now"},
                session.name(), deleted, readableSize(before), readableSize(after));
}

namespace {

// The new library, which goes again unless it is kept.
class Salvaged {
 public:
  Salvaged(const std::wstring& path, Report& report) : path_(shellPath(path)) {
    if (ZoSystem::fileSystem().getAttributes(ZoFileName(path_))) {
      report.fail(kFailed, {352, "%1 exists already; give the name of a new library"}, path);
      return;
    }
    forgetReason();
    if (library_.open(ZoFileName(path_), ZoFile::kReadWrite, ZoFile::kCreateNew))
      report.fail(kFailed, {353, "cannot make %1%2"}, path, because());
  }
  Salvaged(const Salvaged&) = delete;
  Salvaged& operator=(const Salvaged&) = delete;
  ~Salvaged() {
    if (!library_.isOpen()) return;
    static_cast<void>(library_.close());
    if (!kept_)
      static_cast<void>(ZoSystem::fileSystem().erase(ZoFileName(path_), ZoFileSystem::kFile));
  }
  void keep() noexcept { kept_ = true; }
  [[nodiscard]] bool isOpen() const noexcept { return library_.isOpen(); }
  ZoLibrary& library() noexcept { return library_; }

 private:
  std::wstring path_;
  ZoLibrary library_;
  bool kept_ = false;
};

}  // namespace

void salvage(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openDamaged()) return;
  const std::wstring& name = options.names[0];
  Salvaged target(name, report);
  if (!target.isOpen()) return;
  session.progress().expect(session.fileSize());
  session.progress().begin(session.name(), session.fileSize());
  forgetReason();
  const int code = session->salvageInto(target.library(), [&](const ZoLibEntry& entry, int found) {
    if (!found) {
      report.member(entry.name.view(), "salvaged")["size"] = entry.size;
      return !isCancelled();
    }
    if (found == ZoResult::memberExists) {
      report.member(entry.name.view(), "hidden")["size"] = entry.size;
      report.warn({354,
                   "%1 is there more than once: a further one was salvaged as a deleted member; "
                   "`zolib recover --all` brings it back"},
                  entry.name.view());
      return !isCancelled();
    }
    report.member(entry.name.view(), "lost")["size"] = entry.size;
    if (entry.name.isEmpty())
      report.fail(kDamaged, {355, "lost what cannot be read: it is damaged"});
    else
      report.fail(kDamaged, {356, "lost %1: it is damaged"}, entry.name.view());
    return true;
  });
  const std::size_t salvaged = report.count("salvaged"), lost = report.count("lost");
  report.json()["target"] = toUtf8(name);
  report.json()["salvaged"] = salvaged;
  report.json()["hidden"] = report.count("hidden");
  report.json()["lost"] = lost;
  if (code) return session.reportFailure(say({357, "cannot salvage %1"}, session.name()), code);
  if (!salvaged && !lost && !session->isLibrary()) {
    report.fail(kNotALibrary, {358, "%1 is not a library, and holds no members"}, session.name());
    return;
  }
  if (options.dryRun) return;
  target.keep();
  report.note(
      say({359, "%1: %{?2 1 member|%2 members} salvaged into %3"}, session.name(), salvaged, name) +
      (lost ? say({360, ", %1 lost"}, lost) : std::string()));
}

}  // namespace zolib
