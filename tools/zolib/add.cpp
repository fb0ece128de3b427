// create, add, update: packing.
#include <zo/files/library.h>
#include <zo/files/library_results.h>

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

// Adds one file after the other, and sums up.
class Adder {
 public:
  Adder(const Options& options, Report& report, Session& session)
      : options_(options), report_(report), session_(session), packing_(packingOf(options.mode)) {
    if (options.overwrite == Overwrite::kUnsaid)
      overwrite_ = options.verb == "update" ? Overwrite::kNewer : Overwrite::kAlways;
  }

  void add(const Source& source) {
    const ZoFileName member(source.member);
    if (member.isEmpty() || !member.isAnsi()) {
      report_.fail(kFailed, "cannot add " + toUtf8(source.path) +
                                ": its name has characters that no member's name can have; rename "
                                "the file");
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
    if (const int code = store(source, member)) {
      if (code > 0) session_.reportFailure("cannot add " + toUtf8(source.path), code);
      return;
    }
    ZoLibEntry entry;
    session_->getEntry(member, entry);
    size_ += entry.size;
    packed_ += entry.storedSize;
    Json& json = report_.member(source.member, action);
    json["size"] = entry.size;
    json["packed"] = entry.storedSize;
  }

  void sumUp() {
    Json& json = report_.json();
    std::string text;
    for (const char* action : {"added", "replaced", "kept"}) {
      const std::size_t count = report_.count(action);
      json[action] = count;
      if (count) text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + action;
    }
    if (options_.dryRun) return;
    if (size_)
      text += "; " + readableSize(size_) + " packed to " + readableSize(packed_) + " (" +
              ratioText(packed_, size_) + ")";
    json["size"] = size_;
    json["packed"] = packed_;
    report_.note(session_.name() + ": " + (text.empty() ? "nothing to add" : text));
  }

 private:
  // A code, or -1 for what was reported already.
  int store(const Source& source, const ZoFileName& member) {
    forgetReason();
    if (source.path != L"-")
      return session_->addFile(ZoFileName(source.path), member, true, packing_.mode,
                               packing_.level);
    ZoFile data;
    if (!readInputInto(data, report_)) return -1;
    return session_->addFile(data, member, true, packing_.mode, packing_.level);
  }

  static bool isNewer(const Source& source, const ZoLibEntry& old) noexcept {
    return source.path == L"-" || ticks(source.written) > ticks(old.written);
  }

  const Options& options_;
  Report& report_;
  Session& session_;
  Packing packing_;
  Overwrite overwrite_ = options_.overwrite;
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
  adder.sumUp();
  if (session.isOpen()) session.close();
}

}  // namespace zolib
