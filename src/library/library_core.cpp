#include "library/library_core.h"

#include <algorithm>

#include "library/change.h"
#include "library/entry_search.h"
#include "platform/ansi.h"
#include "system/process_locks.h"

namespace zo {
namespace {

constexpr DWORD kReaderShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kWriterShare = FILE_SHARE_READ | FILE_SHARE_DELETE;
constexpr DWORD kPollInterval = 20;  // ms: there is no waiting for a file

// Without the platform's prefix for long ones, with which it would be no ZoFileName.
std::wstring fullPathOf(const ZoFileName& name) {
  const ZoFileName alias = name.isURL() ? name.localAlias() : ZoFileName();
  const wchar_t* const path = alias.isEmpty() ? name.fullName() : alias.fullName();
  return platformText(
      [&](DWORD size, wchar_t* buffer) { return fileApi().fullPath(path, size, buffer); });
}

bool isHeldByOthers(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

}  // namespace

LibraryCore::LibraryCore() = default;
LibraryCore::~LibraryCore() = default;

// ---- The process-wide lock ----

FilesLock::FilesLock() noexcept : taken_(processLocks.attached) {
  if (taken_) EnterCriticalSection(&processLocks.files);
}

FilesLock::~FilesLock() {
  if (taken_) LeaveCriticalSection(&processLocks.files);
}

// ---- Progress ----

Progress::Progress(const ZoLibrary::Watcher& watcher, bool& cancelled, std::uint64_t total)
    : watcher_(watcher), cancelled_(cancelled), total_(total) {
  cancelled_ = false;
}

bool Progress::add(std::uint64_t bytes) {
  done_ = std::min(done_ + bytes, total_);
  try {
    if (!cancelled_ && watcher_ && !watcher_(done_, total_)) cancelled_ = true;
  } catch (...) {  // it must not pass through the codecs
    cancelled_ = true;
  }
  return !cancelled_;
}

bool Progress::finish() { return done_ == total_ ? !cancelled_ : add(total_ - done_); }

// ---- Opening and closing ----

// Leaves nothing open unless the code is 0 in the end.
struct LibraryCore::ReleaseUnless {
  ~ReleaseUnless() {
    const KeptError kept;
    if (code) core.release();
  }

  LibraryCore& core;
  const int& code;
};

int LibraryCore::open(const ZoFileName& library, int access, ZoFile::CreationMode mode,
                      unsigned int timeOut) {
  if (const int code = close()) return code;
  path = fullPathOf(library);
  if (path.empty()) {
    reportFailure(L"open");
    return ZoResult::refused;
  }
  int code = ZoResult::refused;
  const ReleaseUnless opened{*this, code};
  name = library.deepCopy();
  code = openFile(access, mode, timeOut);
  if (code) return code;
  ++opening;
  writable = (access & ZoFile::kWrite) != 0;
  if (writable) settleIfPossible(true);
  return ZoResult::ok;
}

// An open or a change that worked has worked: what is wrong with the content, or left to be done,
// the next call says or does for itself, with memory for it.
void LibraryCore::settleIfPossible(bool isOpening) noexcept {
  try {
    static_cast<void>(settle(isOpening));
  } catch (const std::bad_alloc&) {
    isIndexed = false;
  }
}

int LibraryCore::openFile(int access, ZoFile::CreationMode mode, unsigned int timeOut) {
  const SystemPath system(path.c_str());
  if (!(access & ZoFile::kWrite)) {
    const DWORD allowed = GENERIC_READ;
    if (file.open(system, allowed, kReaderShare, mode)) return ZoResult::ok;
    reportFailure(L"open");
    return ZoResult::refused;
  }
  const ULONGLONG start = GetTickCount64();
  if (const int code = lock_.take(path, timeOut)) return code;
  // A file is emptied only when it is ours alone.
  DWORD disposition = mode;
  if (mode == ZoFile::kCreateAlways) disposition = OPEN_ALWAYS;
  if (mode == ZoFile::kTruncateExisting) disposition = OPEN_EXISTING;
  for (;;) {
    if (file.open(system, GENERIC_READ | GENERIC_WRITE, kWriterShare, disposition)) {
      if (file.lock()) return beginNew(mode);
      if (disposition == CREATE_NEW) disposition = OPEN_EXISTING;  // it is there now
    }
    if (!isHeldByOthers(GetLastError())) {
      reportFailure(L"open");
      return ZoResult::refused;
    }
    file.take(OpenFile());
    if (GetTickCount64() - start >= timeOut) return ZoResult::libraryWriteLocked;
    Sleep(kPollInterval);
  }
}

// The file as it was, after it had to be closed.
bool LibraryCore::reopen(const SystemPath& system) noexcept {
  return file.open(system, GENERIC_READ | GENERIC_WRITE, kWriterShare, OPEN_EXISTING) &&
         file.lock();
}

// A file that holds nothing, or no more than what a killed process wrote of a new library.
int LibraryCore::beginNew(ZoFile::CreationMode mode) {
  LibraryFile::Signature signature;
  if (!file.look(signature)) return ZoResult::refused;
  const bool empties = mode == ZoFile::kCreateAlways || mode == ZoFile::kTruncateExisting;
  if (empties && signature.size != 0 && !file.cut(0)) return ZoResult::refused;
  const auto fresh = LibraryHeader::fresh().bytes();
  const std::size_t size = static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), 33));
  if (size > kHeaderSize) return ZoResult::ok;
  std::array<unsigned char, kHeaderSize> bytes{};
  if (!file.read(0, std::span(bytes).first(size))) return ZoResult::refused;
  const bool isBegun =
      size < kHeaderSize && std::equal(bytes.begin(), bytes.begin() + size, fresh.begin());
  const bool isZero = std::all_of(bytes.begin(), bytes.end(), [](auto c) { return c == 0; });
  if (!isBegun && !isZero) return ZoResult::ok;
  return file.write(0, fresh) && file.flush() ? ZoResult::ok : ZoResult::refused;
}

int LibraryCore::close() {
  if (!isOpen()) return ZoResult::ok;
  int code = ZoResult::refused;
  try {
    code = endBatch();
  } catch (const std::bad_alloc&) {  // it is closed all the same, without the batch
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    reportFailure(L"close");
  }
  return release() ? code : ZoResult::refused;
}

bool LibraryCore::release() noexcept {
  const bool closed = file.close();
  lock_.release();
  writable = false;
  isIndexed = false;
  firstFind_.reset();
  index.clear();
  scan = {};
  name = ZoFileName();
  for (MemberPlace* const place : places) place->isGone = true;
  places.clear();
  return closed;
}

int LibraryCore::mayRead(const ZoFileName* member) const {
  if (!isOpen()) return ZoResult::refused;
  return member && member->isURL() ? ZoResult::invalid : ZoResult::ok;
}

int LibraryCore::mayWrite(const ZoFileName* member) const {
  if (const int code = mayRead(member)) return code;
  return writable ? ZoResult::ok : ZoResult::libraryReadOnly;
}

// ---- The index ----

int LibraryCore::refresh() {
  // Another process may change the file while it is read: the index counts when it was built of a
  // file that stayed the same. One that changes all the time is taken as it was seen.
  LibraryFile::Signature now;
  if (batch && isIndexed) return ZoResult::ok;  // what changes the file is not yet visible
  if (!file.look(now)) return ZoResult::refused;
  int code = ZoResult::ok;
  for (int attempt = 0; !(isIndexed && indexed == now) && attempt < kAttempts; ++attempt) {
    code = buildIndex();
    indexed = now;
    isIndexed = code == ZoResult::ok;
    if (writable) break;
    if (!file.look(now)) return ZoResult::refused;
    if (code && indexed == now) break;
  }
  return code;
}

int LibraryCore::lookAgain(const std::function<int()>& work) {
  for (int attempt = 1;; ++attempt) {
    LibraryFile::Signature before, after;
    if (!writable && !file.look(before)) return ZoResult::refused;
    const int code = work();
    if (!code || writable || cancelled || attempt == kAttempts) return code;
    if (!file.look(after) || before == after) return code;
  }
}

int LibraryCore::readHeader() {
  isIndexed = false;
  header = {};
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), kHeaderSize));
  return file.read(0, header.room().first(size)) ? ZoResult::ok : ZoResult::refused;
}

int LibraryCore::refreshHeader() {
  LibraryFile::Signature now;
  if (batch && isIndexed) return ZoResult::ok;
  if (!file.look(now)) return ZoResult::refused;
  return isIndexed && indexed == now ? ZoResult::ok : readHeader();
}

int LibraryCore::buildIndex() {
  const std::uint64_t size = file.size();
  index.clear();
  if (const int code = readHeader()) return code;
  // No more than the file can hold, whatever it says.
  index.reserve(static_cast<std::size_t>(
      std::min<std::uint64_t>(header.counter(), size / (kRecordSize + 1))));
  scan = scanEntries(file, size, [this](const RawEntry& entry) {
    index.add(entry);
    return true;
  });
  for (const RawEntry& entry : scan.redo) index.replace(entry);
  // What could be read is kept for salvage only: to anyone else the rest would be missing.
  return scan.end == ScanEnd::kUnreadable ? ZoResult::refused : ZoResult::ok;
}

// ---- What a killed writer left ----

int LibraryCore::settle(bool isOpening) {
  if (const int code = endBatch()) return code;
  if (const int code = refresh()) return code;
  if (scan.redoPosition) {
    if (const int code = finishRedo()) return code;
  }
  if (scan.position == file.size()) return ZoResult::ok;
  // Who opens it has not yet asked for a change: what may be a damage stays for salvage.
  const bool mayCut = !isOpening || tailEnd() == ScanEnd::kClosedGate;
  if (mayCut && isOwnTail()) return cutTail();
  if (!isOpening) {
    SetLastError(ERROR_FILE_CORRUPT);
    reportFailure(L"write");
  }
  return ZoResult::refused;
}

// What follows the last entry, also behind a mark.
ScanEnd LibraryCore::tailEnd() {
  if (scan.end != ScanEnd::kMark) return scan.end;
  ReadWindow window(file, file.size());
  return endAt(window, scan.position);
}

int LibraryCore::finishRedo() {
  for (const RawEntry& entry : scan.redo) {
    if (!file.write(entry.position, entry.bytes())) return ZoResult::refused;
  }
  if (!file.flush()) return ZoResult::refused;
  scan.position = scan.redoPosition;
  scan.lastEntry = index.entries().empty() ? 0 : index.entries().back().position;
  scan.end = ScanEnd::kFileEnd;
  scan.redo.clear();
  scan.redoPosition = 0;
  return cutTail();
}

int LibraryCore::cutTail() {
  isIndexed = false;
  if (!file.cut(scan.position) || !file.flush()) return ZoResult::refused;
  if (scan.end != ScanEnd::kMark) scan.end = ScanEnd::kFileEnd;
  file.touch();
  isIndexed = file.look(indexed);
  return ZoResult::ok;
}

bool LibraryCore::isOwnTail() {
  if (!header.hasMagic() || scan.position > file.size()) return false;
  const ScanEnd tail = tailEnd();
  // An entry without a name may be one whose name's length is damaged: then the rest is its own.
  const auto& entries = index.entries();
  const bool followsMember =
      scan.position == (entries.empty() ? kHeaderSize : entries.back().end());
  const bool isCut = followsMember && (tail == ScanEnd::kShort || tail == ScanEnd::kZero);
  return (isCut || tail == ScanEnd::kClosedGate) && endsWhereItSays();
}

// Whether the scan came to the end of the entries by entries that end where they say, so that none
// swallowed others. One that is proven at the end is enough: what precedes it is out of question.
bool LibraryCore::endsWhereItSays() {
  const ZoLibrary::Watcher none;
  bool ignored = false;
  Progress unwatched(none, ignored, 0);
  EntrySearch search(file, file.size());
  search.know(file.size());
  std::uint64_t next = scan.position;
  for (std::size_t i = index.entries().size(); i-- > 0;) {
    RawEntry entry;
    if (!load(index.entries()[i], entry)) return false;
    search.search(entry.end(), next);  // entries without a name
    const Extent extent = extentOf(entry, unwatched);
    if (extent == Extent::kDamaged) return false;
    if (extent == Extent::kSound) return search.found().empty();
    if (!holdsLibrary(entry)) search.search(entry.position + 1, entry.end());
    next = entry.position;
  }
  search.search(kHeaderSize, next);
  return search.found().empty();
}

}  // namespace zo
