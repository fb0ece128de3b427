#include "session.h"

#include <windows.h>
#include <zo/library/library_results.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <algorithm>
#include <thread>
#include <unordered_set>

#include "cancel.h"
#include "names.h"
#include "sources.h"
#include "text.h"

namespace zolib {
namespace {

constexpr std::uint64_t kHeader = 32;  // bytes

}  // namespace

Session::Session(const Options& options, Report& report)
    : options_(options),
      report_(report),
      path_(shellPath(options.library)),
      shown_(toUtf8(options.library)),
      progress_(report.console(), !options.quiet) {
  library_.onProgress(
      [this, caller = std::this_thread::get_id()](std::uint64_t done, std::uint64_t total) {
        if (std::this_thread::get_id() == caller) progress_.at(done, total);
        return !isCancelled();
      });
}

bool Session::openToRead() { return open(ZoFile::kRead, ZoFile::kOpenExisting) && checkMark(); }

bool Session::openDamaged() { return open(ZoFile::kRead, ZoFile::kOpenExisting); }

bool Session::openToWrite(ZoFile::CreationMode mode) {
  const bool exists = ZoSystem::fileSystem().getAttributes(ZoFileName(path_)) != 0;
  if (mode == ZoFile::kCreateNew && exists) {
    report_.fail(kFailed, {100, "%1 exists already; add to it with `zolib add`"}, shown_);
    return false;
  }
  if (!options_.dryRun) {
    if (!open(ZoFile::kReadWrite, mode)) return false;
    isMade_ = !exists;
    return checkMark();
  }
  if (exists || mode == ZoFile::kOpenExisting) return openToRead();
  const std::wstring_view folder = folderOf(path_);
  const ZoFileName place(folder);
  if (place.isEmpty() ||
      (ZoSystem::fileSystem().getAttributes(place) & FILE_ATTRIBUTE_DIRECTORY) != 0)
    return true;
  report_.fail(kFailed, {119, "cannot make %1: there is no folder %2"}, shown_, folder);
  return false;
}

bool Session::open(int access, ZoFile::CreationMode mode) {
  forgetReason();
  const ZoFileName name(path_);
  const unsigned int attributes = ZoSystem::fileSystem().getAttributes(name);
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
    report_.fail(kNotALibrary, {101, "%1 is a folder; name a library file"}, shown_);
    return false;
  }
  if (!attributes && mode == ZoFile::kOpenExisting) {
    report_.fail(kNotFound, {102, "cannot find the library %1%2; check its name"}, shown_,
                 because());
    return false;
  }
  forgetReason();
  const double wait = std::clamp(options_.lockSeconds, 0.0, 4e6) * 1000;
  switch (library_.open(name, access, mode, static_cast<unsigned int>(wait))) {
    case ZoResult::ok:
      return true;
    case ZoResult::libraryWriteLocked:
      report_.fail(kLocked,
                   {103,
                    "%1 is locked: another program is writing to it; try again later, or wait "
                    "longer with --lock-timeout"},
                   shown_);
      return false;
    default:
      report_.fail(kFailed, {104, "cannot open %1%2; check its name and your rights"}, shown_,
                   because({105, "it cannot be read or written"}));
      return false;
  }
}

bool Session::checkMark() {
  if (library_.isLibrary()) {
    // The header of one that is being made has nothing in it yet.
    if (fileSize() >= kHeader || (!library_.counter() && !library_.checkSum())) return true;
    report_.fail(kDamaged, {116, "%1 is damaged: it ends within its header"}, shown_);
    return false;
  }
  static_cast<void>(library_.close());  // it was only read
  report_.fail(kNotALibrary,
               {106,
                "%1 is not a library: it does not begin with a library's mark; if it was one, "
                "`zolib salvage` looks for its members"},
               shown_);
  return false;
}

void Session::close() {
  forgetReason();
  const bool isUseless = isMade_ && report_.code() > kWarnings && isEmpty();
  if (library_.close()) report_.fail(kFailed, {107, "cannot close %1%2"}, shown_, because());
  if (!isUseless) return;
  static_cast<void>(ZoSystem::fileSystem().erase(ZoFileName(path_), ZoFileSystem::kFile));
}

bool Session::isEmpty() {
  bool isEmpty = true;
  const auto found = [&](const ZoLibEntry&) { return isEmpty = false; };
  return library_.isOpen() && !library_.forEachEntry(found, true) && isEmpty;
}

const std::vector<std::wstring>* Session::names() {
  if (!names_) {
    std::vector<std::wstring>& names = names_.emplace();
    const bool isRead = namesOf(options_, names, report_);
    selectsNothing_ = !isRead || (options_.filesFrom && names.empty());
  }
  return selectsNothing_ || !names_ ? nullptr : &*names_;
}

bool Session::namesAny() {
  if (names()) return true;
  if (report_.code() == kOk && options_.filesFrom)
    report_.fail(kUsage, {115, "name what to %1: the list %2 is empty"}, options_.verb,
                 *options_.filesFrom);
  return false;
}

std::vector<ZoLibEntry> Session::select(Which which) {
  const std::vector<std::wstring>* const names = library_.isOpen() ? this->names() : nullptr;
  return names ? select(which, *names) : std::vector<ZoLibEntry>();
}

// Those of members, though they look like patterns: who names "[x]" does not mean "x" as well.
std::unordered_set<std::wstring> Session::wholeNames(Which which,
                                                     const std::vector<std::wstring>& names) {
  std::unordered_set<std::wstring> alike, whole;
  for (const std::wstring& name : names)
    if (name.starts_with(L'@') || name.find_first_of(L"[{") != std::wstring::npos)
      alike.insert(folded(name));
  if (alike.empty()) return whole;
  static_cast<void>(library_.forEachEntry(  // a failure is that of the search that follows
      [&](const ZoLibEntry& entry) {
        const std::wstring name = folded(entry.name.view());
        if (alike.contains(name)) whole.insert(name);
        return !isCancelled();
      },
      which != kLive));
  return whole;
}

std::vector<ZoLibEntry> Session::select(Which which, const std::vector<std::wstring>& names,
                                        Unmatched unmatched, const Visitor& isWanted) {
  Selection selection(names, options_.include, options_.exclude, wholeNames(which, names));
  std::vector<ZoLibEntry> entries;
  static_cast<void>(visit(which, selection, 1, [&](const ZoLibEntry& entry) {
    if (!isWanted || isWanted(entry)) entries.push_back(entry);
    return true;
  }));
  if (isCancelled()) return {};
  if (unmatched == kIsReported) reportUnmatched(which, selection);
  return entries;
}

bool Session::visit(Which which, Selection& selection, std::uint64_t first, const Visitor& take) {
  forgetReason();
  const int code = library_.forEachEntry(
      [&](const ZoLibEntry& entry) {
        const bool fits = which == kBoth || entry.isDeleted() == (which == kDeleted);
        const bool isNamed = (fits || which == kLive) && selection.wantsNumber(entry.ordinal);
        if (isNamed) numbered_.insert(entry.ordinal);
        const bool isWanted = isNamed || (fits && selection.wants(entry.name.view()));
        return !isCancelled() && (!isWanted || take(entry));
      },
      which != kLive || selection.hasNumbers(), first);
  if (isCancelled()) {
    report_.cancelled();
    return false;
  }
  if (code) report_.fail(kFailed, {108, "cannot read %1%2"}, shown_, because());
  return !code;
}

void Session::reportUnmatched(Which which, const Selection& selection) {
  for (const std::wstring& name : selection.unmatched()) {
    const Text none{109, "%1 has no member %2; `zolib list` shows what it has"};
    const Text noneDeleted{110, "%1 has no deleted member %2; `zolib list` shows what it has"};
    report_.fail(kNotFound, which == kDeleted ? noneDeleted : none, shown_, name);
  }
}

void Session::choose(Which which, Unmatched unmatched, const std::function<bool(Selection&)>& use) {
  const std::vector<std::wstring>* const names = library_.isOpen() ? this->names() : nullptr;
  if (!names) return;
  Selection selection(*names, options_.include, options_.exclude, wholeNames(which, *names));
  if (use(selection) && unmatched == kIsReported) reportUnmatched(which, selection);
}

void Session::forEach(Which which, const Visitor& visitor) {
  choose(which, kIsReported, [&](Selection& selection) {
    static_cast<void>(visit(which, selection, 1, visitor));
    return !isCancelled();
  });
}

void Session::forPieces(Which which,
                        const std::function<bool(const std::vector<ZoLibEntry>&)>& take) {
  choose(which, kIsReported, [&](Selection& selection) {
    std::vector<ZoLibEntry> piece(kPiece);
    for (std::uint64_t next = 1; piece.size() == kPiece;) {
      piece.clear();
      const bool isRead = visit(which, selection, next, [&](const ZoLibEntry& entry) {
        piece.push_back(entry);
        next = entry.ordinal + 1;
        return piece.size() < kPiece;
      });
      if (isCancelled() || !take(piece) || !isRead) return false;
    }
    return true;
  });
}

std::uint64_t Session::totalSize(Which which) {
  std::uint64_t total = 0;
  if (!progress_.isShown()) return total;
  choose(which, kMayBeNone, [&](Selection& selection) {
    return visit(which, selection, 1, [&](const ZoLibEntry& entry) {
      total += entry.size;
      return true;
    });
  });
  return total;
}

// False when it is gone. Physical deletion moves entries, and one that is replaced has a new one.
bool Session::findAgain(ZoLibEntry& entry) {
  std::optional<ZoLibEntry> same, live;
  const auto look = [&](const ZoLibEntry& version) {
    const bool isSame = version.number == entry.number && version.crc == entry.crc &&
                        version.size == entry.size && version.isDeleted() == entry.isDeleted();
    if (isSame && (!same || version.position == entry.position)) same = version;
    if (!live && !version.isDeleted()) live = version;
    return true;
  };
  forgetReason();
  const bool isUnreadable = library_.forEachVersion(entry.name, look) && !reason().empty();
  if (!same && !entry.isDeleted()) same = live;
  if (same) entry = *same;
  return same || isUnreadable;
}

int Session::readAgain(const ZoLibEntry& entry, const std::function<int(const ZoLibEntry&)>& read) {
  ZoLibEntry now = entry;
  for (int unmoved = 0;;) {
    const std::uint64_t before = now.position;
    if (!findAgain(now)) return kGone;
    unmoved = now.position == before ? unmoved + 1 : 0;
    forgetReason();
    const int code = read(now);
    if (!code || unmoved == 2 || isCancelled()) return code;
  }
}

bool Session::reportTrailing(ExitCode code) {
  const std::uint64_t bytes = library_.isOpen() ? library_.trailingBytes() : 0;
  if (!bytes) return false;
  const std::string text = say(
      {111,
       "%1: %2 %{?2 byte|bytes} behind its last member are no member: left by a writer that was "
       "ended, or damage; `zolib salvage` finds members behind a damage"},
      shown_, bytes);
  if (code == kWarnings)
    report_.warn(text);
  else
    report_.fail(code, text);
  return true;
}

void Session::reportFailure(std::string_view what, int code, std::string_view advice) {
  reportFailure(what, code, reason(), advice);
}

void Session::reportFailure(std::string_view what, int code, const std::string& why,
                            std::string_view advice) {
  if (library_.wasCancelled() || isCancelled()) return report_.cancelled();
  if (isTooMuch(why))
    return report_.fail(kFailed,
                        {117,
                         "%1: that is more than one step has room for (16 MiB of names "
                         "and records); do it in parts, by folders or patterns"},
                        what);
  // A change that is refused for a damage says so. With any other reason, what stands behind the
  // last member may be what a write that failed left, which the next change takes away.
  const bool isDamaged = isDamage(why) || (why.empty() && library_.trailingBytes());
  if (isDamaged && options_.verb != "salvage") {
    report_.fail(kDamaged, {112, "%1: %2 is damaged; get its members with `zolib salvage`"}, what,
                 shown_);
    return;
  }
  switch (code) {
    case ZoResult::invalid:
      return report_.fail(kFailed, {113, "%1: a URL cannot be a member's name"}, what);
    case ZoResult::memberExists:
      return report_.fail(kFailed, {114, "%1: a member has that name; rename or delete it first"},
                          what);
    default:
      report_.fail(kFailed, std::string(what) + ": " + (why.empty() ? say(kRefused) : why) +
                                (advice.empty() ? "" : "; ") + std::string(advice));
  }
}

std::uint64_t Session::fileSize() const {
  ZoFile file;
  const int share = ZoFile::kShareRead | ZoFile::kShareWrite | ZoFile::kShareDelete;
  if (file.open(ZoFileName(path_), ZoFile::kRead, ZoFile::kOpenExisting, share)) return 0;
  return static_cast<std::uint64_t>(std::max<std::int64_t>(file.size(), 0));
}

void tellGone(const Session& session, Report& report, std::wstring_view member) {
  report.member(member, "gone");
  report.warn({118, "%1 is gone: another program removed it from %2 meanwhile"}, member,
              session.name());
}

}  // namespace zolib
