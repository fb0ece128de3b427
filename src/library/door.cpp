#include "library/door.h"

#include <utility>

#include "library/change.h"
#include "platform/recursive_lock.h"
#include "platform/system_path.h"

namespace zo {
namespace {

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

// A file is emptied only when it is ours alone; who reads makes and empties none.
DWORD firstDisposition(bool writes, ZoFile::CreationMode mode) {
  if (!writes && mode == ZoFile::kOpenAlways) return OPEN_EXISTING;
  if (writes && mode == ZoFile::kCreateAlways) return OPEN_ALWAYS;
  if (writes && mode == ZoFile::kTruncateExisting) return OPEN_EXISTING;
  return mode;
}

}  // namespace

// ---- The process-wide lock ----

namespace {
constinit RecursiveLock librariesLock;
}

FilesLock::FilesLock() noexcept { librariesLock.lock(); }
FilesLock::~FilesLock() { librariesLock.unlock(); }

// ---- Opening ----

// What an open asks for, and how far it came.
struct LibraryDoor::Opening {
  const ZoFileName& name;
  bool writes;
  bool empties;
  unsigned int timeOut;
  DWORD disposition;
  std::wstring path;
  bool meetsOtherMachine = false;  // another writer has the file, and not the lock
};

// Leaves nothing open unless the code is 0 in the end.
struct LibraryDoor::ReleaseUnless {
  ~ReleaseUnless() {
    const KeptError kept;
    if (code) library.release();
  }

  LibraryState& library;
  const int& code;
};

// The write lock is taken under the process-wide lock, without waiting; it is waited for outside of
// it, and then tried again. So nobody waits for the one lock and holds the other, and the writer
// that is waited for may be a thread of this process.
int LibraryDoor::open(const ZoFileName& name, int access, ZoFile::CreationMode mode,
                      unsigned int timeOut) {
  const bool writes = (access & ZoFile::kWrite) != 0;
  const bool empties = mode == ZoFile::kCreateAlways || mode == ZoFile::kTruncateExisting;
  Opening opening{.name = name,
                  .writes = writes,
                  .empties = empties,
                  .timeOut = timeOut,
                  .disposition = firstDisposition(writes, mode),
                  .path = {}};
  for (const ULONGLONG start = GetTickCount64();;) {
    if (const int code = openOnce(opening); code != ZoResult::libraryWriteLocked) return code;
    const ULONGLONG waited = GetTickCount64() - start;
    if (waited >= timeOut) return ZoResult::libraryWriteLocked;
    if (opening.meetsOtherMachine) {
      Sleep(kPollInterval);
    } else if (const int code =
                   WriteLock::await(opening.path, static_cast<DWORD>(timeOut - waited))) {
      return code;
    }
  }
}

// 1005 when another writer has the library.
int LibraryDoor::openOnce(Opening& opening) {
  const FilesLock lock;
  if (const int code = close()) return code;
  if (opening.path.empty()) opening.path = fullPathOf(opening.name);
  if (opening.path.empty()) {
    reportFailure(L"open");
    return ZoResult::refused;
  }
  int code = ZoResult::refused;
  const ReleaseUnless opened{library_, code};
  library_.name_ = opening.name.deepCopy();
  library_.path_ = opening.path;
  opening.meetsOtherMachine = false;
  code = opening.writes ? library_.lock_.take(opening.path) : ZoResult::ok;
  if (code == ZoResult::ok) code = openFile(opening);
  if (code) return code;
  library_.isWritable_ = opening.writes;
  library_.timeOut_ = opening.timeOut;
  if (opening.writes) Change::settleOpened(library_);
  return ZoResult::ok;
}

int LibraryDoor::openFile(Opening& opening) {
  DiskFile& file = library_.file_;
  if (!opening.writes && opening.disposition != OPEN_EXISTING) {
    SetLastError(ERROR_INVALID_PARAMETER);
    reportFailure(L"open");
    return ZoResult::refused;
  }
  const SystemPath system(opening.path.c_str());
  SetLastError(ERROR_SUCCESS);
  const bool isOpened = opening.writes ? file.openToWrite(system, opening.disposition)
                                       : file.openToRead(system, opening.disposition);
  bool isMade = opening.disposition == CREATE_NEW ||
                (opening.disposition == OPEN_ALWAYS && GetLastError() == ERROR_SUCCESS);
  // The error alone is not trusted with a file that may go again.
  if (isOpened && isMade) isMade = file.isEmpty();
  if (isOpened && !opening.writes) return ZoResult::ok;
  if (isOpened) {
    if (file.lock()) return makeNew(opening, system, isMade);
    if (opening.disposition == CREATE_NEW) opening.disposition = OPEN_EXISTING;  // it is there now
  }
  if (opening.writes && isHeldByOthers(GetLastError())) {
    file.take(OpenFile());
    opening.meetsOtherMachine = true;
    return ZoResult::libraryWriteLocked;
  }
  reportFailure(L"open");
  return ZoResult::refused;
}

int untilReplaced(const std::shared_ptr<LibraryDoor>& door, const std::function<int()>& change) {
  for (const ULONGLONG start = GetTickCount64();;) {
    const int code = change();
    if (code != ZoResult::libraryInUse) return code;
    ULONGLONG timeOut = 0;
    const int refused = run(door, Access::kRead, {}, [&](LibraryState& library) {
      timeOut = library.timeOut();
      return ZoResult::ok;
    });
    if (refused || GetTickCount64() - start >= timeOut) return code;
    Sleep(kPollInterval);
  }
}

// A file that was made for it goes again when it does not become a library.
int LibraryDoor::makeNew(const Opening& opening, const SystemPath& path, bool isMade) {
  const int code = Change::makeNew(library_, opening.empties);
  if (!code || !isMade) return code;
  const KeptError kept;
  static_cast<void>(library_.file_.close());
  fileApi().removeFile(path);
  return code;
}

// ---- Closing ----

int LibraryDoor::close() {
  const FilesLock lock;
  if (!library_.isOpen()) return ZoResult::ok;
  int code = ZoResult::refused;
  try {
    code = endBatch(library_);
  } catch (const std::bad_alloc&) {  // it is closed all the same, without the batch
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    reportFailure(L"close");
  }
  return library_.release() ? code : ZoResult::refused;
}

void LibraryDoor::abandon() {
  const FilesLock lock;
  library_.batch.reset();
  static_cast<void>(close());
}

// ---- Running ----

int LibraryDoor::mayRun(Access access, std::initializer_list<const ZoFileName*> members) const {
  if (access == Access::kKnow) return ZoResult::ok;
  if (!library_.isOpen()) return ZoResult::refused;
  for (const ZoFileName* const member : members) {
    if (member && member->isURL()) return ZoResult::invalid;
  }
  const bool lacks = access == Access::kWrite && !library_.isWritable();
  return lacks ? ZoResult::libraryReadOnly : ZoResult::ok;
}

}  // namespace zo
