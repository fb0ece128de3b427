// create, add, update: packing.
#include <windows.h>
#include <zo/library/library.h>
#include <zo/library/library_results.h>

#include "cancel.h"
#include "names.h"
#include "session.h"
#include "sources.h"
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

// Adds one file after the other, and sums up. Small ones go in batches, each of which is in the
// library as a whole or not at all; a killed program costs the last second's.
class Adder {
 public:
  Adder(const Options& options, Report& report, Session& session)
      : options_(options), report_(report), session_(session), packing_(packingOf(options.mode)) {
    if (options.overwrite == Overwrite::kUnsaid)
      overwrite_ = options.verb == "update" ? Overwrite::kNewer : Overwrite::kAlways;
  }

  void add(const Source& source) {
    const ZoFileName member(source.member);
    if (const std::string why = refusal(source, member); !why.empty()) {
      report_.fail(kFailed, {200, "cannot add %1: %2"}, source.path, why);
      return;
    }
    ZoLibEntry old;
    const bool exists = session_.isOpen() && session_->getEntry(member, old) == ZoResult::ok;
    if (exists && (overwrite_ == Overwrite::kNever ||
                   (overwrite_ == Overwrite::kNewer && !isNewer(source, old)))) {
      report_.member(source.member, "kept");
      return;
    }
    const char* action = exists ? "replaced" : "added";
    if (options_.dryRun) {
      report_.member(source.member, action)["size"] = source.size;
      return;
    }
    session_.progress().begin(toUtf8(source.member), source.size);
    const bool alone = source.path == L"-" || source.size >= kAlone;
    if (alone || GetTickCount64() >= batchBegun_ + kBatchTime) endBatch();
    const int code = store(source, member, alone);
    if (!code)
      batch_.push_back({member, action});
    else if (code > 0)
      session_.reportFailure(say({201, "cannot add %1"}, source.path), code);
    if (alone) endBatch();
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
  };
  static constexpr std::uint64_t kAlone = 16 << 20;  // bytes
  static constexpr std::uint64_t kBatchTime = 1000;  // ms

  // Why no file could ever come out of the library under the member's name; empty when one can.
  static std::string refusal(const Source& source, const ZoFileName& member) {
    std::optional<Text> why = refusalOf(source.member);
    if (member.isEmpty())
      why = Text{211, "its name is none that a member can have (a $ in front begins a macro)"};
    else if (!member.isAnsi())
      why = Text{208, "its name has characters that no member's name can have"};
    if (!why) return {};
    return say(*why) + (source.path == L"-" ? say({209, "; give another --name"})
                                            : say({210, "; rename the file"}));
  }

  // A code, or -1 for what was reported already.
  int store(const Source& source, const ZoFileName& member, bool alone) {
    ZoFile data;
    if (source.path == L"-" && !readInputInto(data, report_)) return -1;
    forgetReason();
    if (!alone && !inBatch_) {
      if (const int code = session_->beginBatch()) return code;
      inBatch_ = true;
      batchBegun_ = GetTickCount64();
    }
    return source.path == L"-"
               ? session_->addFile(data, member, true, packing_.mode, packing_.level)
               : session_->addFile(ZoFileName(source.path), member, true, packing_.mode,
                                   packing_.level);
  }

  static bool isNewer(const Source& source, const ZoLibEntry& old) noexcept {
    return source.path == L"-" || ticks(source.written) > ticks(old.written);
  }

  const Options& options_;
  Report& report_;
  Session& session_;
  Packing packing_;
  Overwrite overwrite_ = options_.overwrite;
  std::vector<Added> batch_;  // stored, and not yet said
  bool inBatch_ = false;
  std::uint64_t batchBegun_ = 0;
  std::uint64_t size_ = 0, packed_ = 0;
};

}  // namespace

void add(const Options& options, Report& report) {
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
  for (const Source& source : sources) {
    if (isCancelled()) report.cancelled();
    if (report.code() == kCancelled) break;
    adder.add(source);
  }
  if (session.isOpen()) adder.endBatch();
  adder.sumUp();
  if (session.isOpen()) session.close();
}

}  // namespace zolib
