// create, add, update: packing.
#include <windows.h>
#include <zo/library/library.h>
#include <zo/library/library_results.h>
#include <zo/library/packed_member.h>

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cancel.h"
#include "names.h"
#include "places.h"
#include "same.h"
#include "session.h"
#include "sources.h"
#include "sync.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

struct Packing {
  ZoLibrary::compMode mode;
  int level;
};

Packing packingOf(Mode mode) noexcept {
  switch (mode) {
    case Mode::kStore:
      return {ZoLibrary::kStore, ZoLibrary::kNormal};
    case Mode::kFast:
      return {ZoLibrary::kCompress, ZoLibrary::kFast};
    case Mode::kNormal:
      return {ZoLibrary::kCompress, ZoLibrary::kNormal};
    case Mode::kBest:
      return {ZoLibrary::kCompress, ZoLibrary::kBest};
    case Mode::kAuto:
      break;
  }
  return {ZoLibrary::kAutomatic, ZoLibrary::kNormal};
}

// A file on its way into the library.
struct Job {
  const char* action = "";
  ZoPackedMember packed;
};

// Adds one file after the other, and sums up. Small ones go in batches, each of which is in the
// library as a whole or not at all; a killed program costs the last second's.
class Adder {
 public:
  Adder(const Options& options, Report& report, Session& session)
      : options_(options), report_(report), session_(session), packing_(packingOf(options.mode)) {
    if (options.overwrite == Overwrite::kUnsaid)
      overwrite_ = options.verb == "update" || options.verb == "sync" ? Overwrite::kNewer
                                                                      : Overwrite::kAlways;
  }

  // Looks up at once what the library has of the files' names, where these are many: asked for one
  // after the other, the platform looks at the library's file for each.
  void lookUp(const std::vector<Source>& sources) {
    constexpr std::size_t kMost = 100'000;  // some 70 MB
    const std::uint64_t there = session_.isOpen() ? session_->counter() : 0;
    if (there == 0 || sources.size() > kMost || sources.size() < there / 16) return;
    for (const Source& source : sources) known_.try_emplace(source.key);
    forgetReason();
    const int code = session_->forEachEntry([&](const ZoLibEntry& entry) {
      const auto found = entry.isHidden ? known_.end() : known_.find(folded(entry.name.view()));
      if (found != known_.end()) found->second = entry;
      return !isCancelled();
    });
    if (code) known_.clear();  // each is asked for, and tells why it cannot be
  }

  // Whether it is to be packed.
  bool wants(const Source& source, Job& job) {
    const ZoFileName member(source.member);
    if (const std::string why = refusal(source); !why.empty()) {
      report_.fail(kFailed, {200, "cannot add %1: %2"}, source.path, why);
      return false;
    }
    ZoLibEntry old;
    const bool exists = findOld(source, member, old);
    if (exists && staysAs(old, source)) {
      report_.member(source.member, "kept");
      return false;
    }
    job.action = exists ? "replaced" : "added";
    // (sync deletes what is in the way.)
    if (!exists && options_.verb != "sync" && !fitsIn(source)) return false;
    if (!options_.dryRun) return true;
    report_.member(source.member, job.action)["size"] = source.size;
    return false;
  }

  // What packing on another thread takes; nothing where it is packed as it is added.
  [[nodiscard]] std::uint64_t memoryFor(const Source& source) const noexcept {
    return source.path == L"-" ? 0 : ZoPacker::memoryFor(source.size, packing_.level);
  }

  // On any thread. A failure is found again, with its reason, where it is added.
  void pack(const Source& source, Job& job, ZoPacker& packer) const {
    if (source.path == L"-") return;
    packer.onProgress([](std::uint64_t, std::uint64_t) { return !isCancelled(); });
    static_cast<void>(
        packer.pack(ZoFileName(source.path), job.packed, packing_.mode, packing_.level));
  }

  void add(const Source& source, Job& job) {
    const ZoFileName member(source.member);
    session_.progress().begin(toUtf8(source.member), source.size);
    const bool alone = source.path == L"-" || source.size >= kAlone;
    if (alone)
      endBatch();
    else
      endOldBatch();
    const int code = store(source, member, job.packed, alone);
    job.packed = {};
    if (!code)
      batch_.push_back({member, job.action, source});
    else if (code > 0)
      session_.reportFailure(say({201, "cannot add %1"}, source.path), code);
    if (alone) endBatch();
  }

  void endOldBatch() {
    if (inBatch_ && GetTickCount64() >= batchBegun_ + kBatchTime) endBatch();
  }

  // Makes what was added so far a part of the library.
  void endBatch() {
    forgetReason();
    const int code = inBatch_ ? session_->endBatch() : ZoResult::ok;
    inBatch_ = false;
    if (code) {
      session_.reportFailure(say({202, "cannot add the last %{?1 1 file|%1 files}"}, batch_.size()),
                             code);
      batch_.clear();
    }
    for (const Added& added : batch_) {
      ZoLibEntry entry;
      static_cast<void>(session_->getEntry(added.member, entry));  // without it the sums lack it
      size_ += entry.size;
      packed_ += entry.storedSize;
      Json& json = report_.member(added.member.view(), added.action);
      json["size"] = entry.size;
      json["packed"] = entry.storedSize;
      tellChange(added.source, entry.size);
      verify(entry);
    }
    batch_.clear();
  }

  void sumUp() {
    Json& json = report_.json();
    std::string text;
    const auto append = [&](const char* action, const Text& counted) {
      const std::size_t count = report_.count(action);
      json[action] = count;
      if (count) text += (text.empty() ? "" : ", ") + say(counted, count);
    };
    append("added", {203, "%1 added"});
    append("replaced", {204, "%1 replaced"});
    append("kept", {205, "%1 kept"});
    if (options_.verb == "sync") append("deleted", {216, "%1 deleted"});
    if (options_.dryRun) return;
    if (text.empty()) text = say({206, "nothing to add"});
    if (size_)
      text += say({207, "; %1 packed to %2 (%3)"}, readableSize(size_), readableSize(packed_),
                  ratioText(packed_, size_));
    json["size"] = size_;
    json["packed"] = packed_;
    report_.note(session_.name() + ": " + text);
  }

 private:
  struct Added {
    ZoFileName member;
    const char* action;
    const Source& source;
  };
  static constexpr std::uint64_t kAlone = 16 << 20;  // bytes
  static constexpr std::uint64_t kBatchTime = 1000;  // ms

  // Why no file could ever come out of the library under the member's name; empty when one can.
  static std::string refusal(const Source& source) {
    const std::optional<Text> why = refusalOf(source.member);
    if (!why) return {};
    return say(*why) + (source.path == L"-" ? say({209, "; give another --name"})
                                            : say({210, "; rename the file"}));
  }

  // The member of the name, as it was before any of the files was packed.
  bool findOld(const Source& source, const ZoFileName& member, ZoLibEntry& old) {
    const auto known = known_.find(source.key);
    if (known != known_.end() && known->second.position != 0) {
      old = known->second;
      return true;
    }
    return session_.isOpen() && session_->getEntry(member, old) == ZoResult::ok;
  }

  bool fitsIn(const Source& source) {
    if (!places_) places_.emplace(session_);
    const std::wstring taken = places_->takeIfFree(source.member);
    if (taken.empty()) return true;
    report_.fail(
        kFailed,
        {219, "cannot add %1: the library has %2 as a file or a folder, and it cannot be both"},
        source.path, taken);
    return false;
  }

  // A code, or -1 for what was reported already.
  int store(const Source& source, const ZoFileName& member, ZoPackedMember& packed, bool alone) {
    ZoFile data;
    if (source.path == L"-" && !readInputInto(data, report_)) return -1;
    forgetReason();
    if (!alone && !inBatch_) {
      if (const int code = session_->beginBatch()) return code;
      inBatch_ = true;
      batchBegun_ = GetTickCount64();
    }
    if (!packed.isEmpty()) return session_->addFile(packed, member, true);
    return source.path == L"-"
               ? session_->addFile(data, member, true, packing_.mode, packing_.level)
               : session_->addFile(ZoFileName(source.path), member, true, packing_.mode,
                                   packing_.level);
  }

  // Whether the member is kept as it is.
  bool staysAs(const ZoLibEntry& old, const Source& source) {
    if (overwrite_ == Overwrite::kNever) return true;
    if (overwrite_ == Overwrite::kAlways || source.path == L"-") return false;
    if (options_.byContent) return isSame(source, session_, old).value_or(false);
    if (options_.verb == "sync") return looksSame(source, old);
    return ticks(source.written) <= ticks(old.written);
  }

  // A log that grows, or a file of the system that does not tell its size: what was read counts.
  void tellChange(const Source& source, std::uint64_t size) {
    if (source.path == L"-" || source.size == size) return;
    report_.warn({218, "%1 had %2 bytes when it was found and %3 when it was packed"}, source.path,
                 source.size, size);
  }

  // Reads what was written.
  void verify(const ZoLibEntry& entry) {
    if (!options_.verify || session_->verify(entry) == ZoResult::ok) return;
    report_.fail(kDamaged, {215, "%1 was not written as it was read; see `zolib test`"},
                 entry.name.view());
  }

  const Options& options_;
  Report& report_;
  Session& session_;
  Packing packing_;
  Overwrite overwrite_ = options_.overwrite;
  std::vector<Added> batch_;  // stored, and not yet said
  bool inBatch_ = false;
  std::optional<Places> places_;  // what is there; made for the first new name
  std::unordered_map<std::wstring, ZoLibEntry> known_;  // what was looked up, by folded name
  std::uint64_t batchBegun_ = 0;
  std::uint64_t size_ = 0, packed_ = 0;
};

void addAll(const std::vector<Source>& sources, Adder& adder, Session& session, Report& report) {
  const Crew crew = session.crew();
  const bool packsAhead = crew.threads > 1 && sources.size() > 1;
  std::vector<Job> jobs(sources.size());
  std::vector<ZoPacker> packers(packsAhead ? crew.threads : 0);
  const auto handOut = [&](std::size_t i) -> std::optional<std::uint64_t> {
    if (isCancelled()) report.cancelled();
    if (report.code() == kCancelled || !adder.wants(sources[i], jobs[i])) return std::nullopt;
    return adder.memoryFor(sources[i]);
  };
  const auto pack = [&](std::size_t i, unsigned int worker) {
    if (packsAhead) adder.pack(sources[i], jobs[i], packers[worker]);
  };
  const auto take = [&](std::size_t i) {
    if (isCancelled()) report.cancelled();
    if (report.code() != kCancelled) adder.add(sources[i], jobs[i]);
    return report.code() != kCancelled;
  };
  inOrder(sources.size(), crew, handOut, pack, take, [&] { adder.endOldBatch(); });
}

}  // namespace

void add(const Options& options, Report& report) {
  const bool syncs = options.verb == "sync";
  if (syncs && !areFolders(options, report)) return;
  const std::vector<Source> sources = findSources(options, report);
  if (isCancelled()) return report.cancelled();
  if (sources.empty() && report.code() != kOk) return;  // no library for nothing
  Session session(options, report);
  if (!session.openToWrite(options.verb == "create" ? ZoFile::kCreateNew : ZoFile::kOpenAlways))
    return;
  std::uint64_t total = 0;
  for (const Source& source : sources) total += source.size;
  session.progress().expect(total);
  Adder adder(options, report, session);
  adder.lookUp(sources);
  addAll(sources, adder, session, report);
  if (session.isOpen()) adder.endBatch();
  if (syncs && graver(report.code(), kWarnings) == kWarnings)
    removeGone(options, report, session, sources);
  else if (syncs && report.code() != kCancelled)
    report.warn({217, "nothing was removed, for something could not be read or packed"});
  adder.sumUp();
  if (session.isOpen()) session.close();
}

}  // namespace zolib
