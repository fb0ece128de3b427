// A library that a verb works on: opened with the messages and exit codes that all verbs share.
#pragma once

#include <zo/library/library.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "crew.h"
#include "glob.h"
#include "options.h"
#include "progress.h"
#include "report.h"

namespace zolib {

class Session {
 public:
  Session(const Options& options, Report& report);

  // False when it is not there, cannot be opened, is locked, or is no library; reported.
  bool openToRead();
  // With a creation mode of kOpenExisting, kOpenAlways or kCreateNew. With --dry-run it is opened
  // to read, and one that is missing counts as open if it were to be made.
  bool openToWrite(ZoFile::CreationMode mode = ZoFile::kOpenExisting);
  // Whatever it holds: for what damage left.
  bool openDamaged();
  // Closes it and reports a failure of that. One that was made here goes again when it has no
  // member after a failure.
  void close();

  // What the options and their list name; the list is read once. Null when it cannot be read, which
  // is reported, or is empty: that selects nothing, where no names at all select everything.
  const std::vector<std::wstring>* names();
  // False when a list that is to be worked on names nothing; reported, in the words of the verb.
  bool namesAny();

  // The entries that the options select, in the file's order: live ones, deleted ones, or both.
  // Names that select nothing are reported. A number ("@17") selects a deleted one as well.
  enum Which { kLive, kDeleted, kBoth };
  enum Unmatched { kMayBeNone, kIsReported };
  using Visitor = std::function<bool(const ZoLibEntry&)>;
  std::vector<ZoLibEntry> select(Which which);
  std::vector<ZoLibEntry> select(Which which, const std::vector<std::wstring>& names,
                                 Unmatched unmatched = kIsReported, const Visitor& isWanted = {});
  // Whether it was selected by its number: it is meant, whatever else has its name.
  [[nodiscard]] bool isNumbered(const ZoLibEntry& entry) const {
    return numbered_.contains(entry.ordinal);
  }
  // Whether it is left out where a name means one member: another live one of its name comes first.
  [[nodiscard]] bool isPassedOver(const ZoLibEntry& entry) const {
    return entry.isHidden && !isNumbered(entry);
  }
  // The same one after the other, as they are at one instant and without keeping them; false from
  // the visitor ends it. No call on the library from within.
  void forEach(Which which, const Visitor& visit);
  // The same some at a time; the library may be called meanwhile.
  void forPieces(Which which, const std::function<bool(const std::vector<ZoLibEntry>&)>& take);
  // The bytes of all of them, where somebody sees the progress; else 0.
  std::uint64_t totalSize(Which which);

  // Reads a member that could not be read once more, as it is now: another program may have put it
  // elsewhere or replaced it. Answers what `read` does, or kGone when it is not there any more.
  static constexpr int kGone = -1;
  int readAgain(const ZoLibEntry& entry, const std::function<int(const ZoLibEntry&)>& read);
  // Says what lies behind the last member, if anything does; with which weight is the verb's.
  bool reportTrailing(ExitCode code);
  // Says how a call on one member ended that did not end well: "cannot add", its name, why.
  void reportFailure(std::string_view what, int code, std::string_view advice = {});
  // The same with a reason that was asked for before.
  void reportFailure(std::string_view what, int code, const std::string& why,
                     std::string_view advice);

  // What reading a member takes at once: a dictionary of its size, and buffers.
  [[nodiscard]] static std::uint64_t memoryToRead(const ZoLibEntry& entry) noexcept {
    return std::min<std::uint64_t>(entry.size, 64 << 20) + (1 << 20);
  }
  // For work on the options' threads.
  [[nodiscard]] Crew crew() const noexcept { return {options_.threads, kCrewMemory}; }

  [[nodiscard]] bool isOpen() const noexcept { return library_.isOpen(); }
  [[nodiscard]] std::uint64_t fileSize() const;
  [[nodiscard]] const std::string& name() const noexcept { return shown_; }
  [[nodiscard]] Progress& progress() noexcept { return progress_; }
  ZoLibrary* operator->() noexcept { return &library_; }
  ZoLibrary& operator*() noexcept { return library_; }

 private:
  static constexpr std::uint64_t kCrewMemory = std::uint64_t{1} << 30;

  static constexpr std::size_t kPiece = 4096;  // entries

  // Does something with those that the options name; without names there is nothing to do.
  void choose(Which which, Unmatched unmatched, const std::function<bool(Selection&)>& use);
  // Those from an ordinal on. False when they cannot be read or that was cancelled; reported.
  bool visit(Which which, Selection& selection, std::uint64_t first, const Visitor& take);
  void reportUnmatched(Which which, const Selection& selection);
  std::unordered_set<std::wstring> wholeNames(Which which, const std::vector<std::wstring>& names);
  bool findAgain(ZoLibEntry& entry);
  bool open(int access, ZoFile::CreationMode mode);
  bool checkMark();
  bool isEmpty();

  const Options& options_;
  Report& report_;
  std::wstring path_;
  std::string shown_;  // as the user wrote it
  bool isMade_ = false;
  std::optional<std::vector<std::wstring>> names_;
  bool selectsNothing_ = false;
  std::unordered_set<std::uint64_t> numbered_;  // ordinals
  Progress progress_;
  ZoLibrary library_;
};

// Another program removed a member that was to be read: no fault of the library's.
void tellGone(const Session& session, Report& report, std::wstring_view member);

}  // namespace zolib
