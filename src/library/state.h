// What is known of an open library: its file, and what that held when it was last looked at.
//
// Operations read it. Its door (library/door.h) opens and closes the file; a change
// (library/change.h) alone writes to it, and keeps what is known of it right.
//
// Errors:  the codes of zo/library/library.h.
// Threads: under the process-wide lock, which the door holds.
#pragma once

#include <zo/library/library.h>
#include <zo/library/library_results.h>

#include <optional>
#include <string>
#include <vector>

#include "library/disk_file.h"
#include "library/index.h"
#include "library/progress.h"
#include "library/write_lock.h"

namespace zo {

struct Batch;
class LibraryState;

// A member that is open as a file, or being read: where its entry stands, also after the library's
// file was rewritten. It comes and goes under the process-wide lock, which it takes.
class MemberPlace {
 public:
  explicit MemberPlace(LibraryState& library);
  MemberPlace(const MemberPlace&) = delete;
  MemberPlace& operator=(const MemberPlace&) = delete;
  ~MemberPlace();

  RawEntry entry;
  bool isGone = false;  // removed, or its library was closed

 private:
  LibraryState& library_;
};

// The member that was looked for first since the file changed, and what came of it.
struct FirstFind {
  std::wstring name;
  DiskFile::Signature signature;
  int code = 0;
  RawEntry entry = {};
};

class LibraryState {
 public:
  LibraryState();
  ~LibraryState();
  LibraryState(const LibraryState&) = delete;
  LibraryState& operator=(const LibraryState&) = delete;

  // ---- The file ----
  [[nodiscard]] bool isOpen() const noexcept { return file_.isOpen(); }
  [[nodiscard]] bool isWritable() const noexcept { return isWritable_; }
  // How many ms a writer waits for others.
  [[nodiscard]] unsigned int timeOut() const noexcept { return timeOut_; }
  [[nodiscard]] const ZoFileName& name() const noexcept { return name_; }  // as it was opened
  [[nodiscard]] const std::wstring& path() const noexcept { return path_; }
  // Its bytes, to be read.
  [[nodiscard]] ByteStore& bytes() noexcept { return file_; }
  [[nodiscard]] bool look(DiskFile::Signature& now) noexcept { return file_.look(now); }

  // ---- What it holds ----
  [[nodiscard]] const LibraryHeader& header() const noexcept { return header_; }
  [[nodiscard]] const LibraryIndex& index() const noexcept { return index_; }
  // Of all entries of the index, see there.
  [[nodiscard]] const std::vector<bool>& hidden() { return index_.hidden(); }
  [[nodiscard]] const ScanResult& scan() const noexcept { return scan_; }
  // Makes the index that of the file as it is.
  int refresh();
  // Makes the header that of the file as it is.
  int refreshHeader();
  int readHeader();
  [[nodiscard]] bool isIndexOf(const DiskFile::Signature& seen) const noexcept {
    return isIndexed_ && indexed_ == seen;
  }
  // The next refresh() reads all again.
  void forgetIndex() noexcept { isIndexed_ = false; }
  // An entry as it stands in the file.
  [[nodiscard]] bool load(const IndexEntry& from, RawEntry& entry);
  [[nodiscard]] Progress progress(std::uint64_t total) { return Progress(watch, total); }

  static constexpr int kAttempts = 8;  // to read what another process changes all the time

  Watch watch;
  std::optional<FirstFind> firstFind;
  std::vector<MemberPlace*> places;
  std::unique_ptr<Batch> batch;  // of members that were added and not yet committed

 private:
  friend class Change;
  friend class LibraryDoor;

  int buildIndex();
  // Lets go of the file and all that is known of it. Needs no memory.
  bool release() noexcept;

  ZoFileName name_;
  std::wstring path_;  // in full
  bool isWritable_ = false;
  unsigned int timeOut_ = 0;
  WriteLock lock_;
  DiskFile file_;
  LibraryHeader header_;
  LibraryIndex index_;
  ScanResult scan_;
  // The index is that of this file; or of none.
  bool isIndexed_ = false;
  DiskFile::Signature indexed_;
};

}  // namespace zo
