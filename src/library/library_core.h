// What a ZoLibrary is: the open file, its index and its lock, shared with the members that are open
// as files.
//
// Each operation is a member function in the file that its group names. They run under the
// process-wide lock, which their callers hold (FilesLock).
//
// Errors:  the codes of zo/library/library.h.
#pragma once

#include <zo/library/library.h>
#include <zo/library/library_results.h>

#include <optional>
#include <string>
#include <vector>

#include "library/index.h"
#include "library/library_file.h"
#include "library/time_value.h"
#include "library/write_lock.h"

namespace zo {

// One operation on libraries at a time in a process.
class FilesLock {
 public:
  FilesLock() noexcept;
  FilesLock(const FilesLock&) = delete;
  FilesLock& operator=(const FilesLock&) = delete;
  ~FilesLock();

 private:
  bool taken_;  // not before zoComDllAttach
};

struct MemberTimes {
  FILETIME created{}, accessed{}, written{};

  void storeIn(EntryRecord& record) const noexcept {
    record.created = timeValue(created);
    record.accessed = timeValue(accessed);
    record.written = timeValue(written);
  }
};

// Where the data of a member that is open as a file stands: kept right when the library's file is
// rewritten.
struct MemberPlace {
  RawEntry entry;
  bool isGone = false;
};

// Bytes of a new member, which can be asked for once more.
class MemberSource : public ByteSource {
 public:
  [[nodiscard]] virtual std::uint64_t size() const = 0;
  [[nodiscard]] virtual bool restart() = 0;
};

// How a call reports that it goes on, and learns that it shall not.
class Progress {
 public:
  Progress(const ZoLibrary::Watcher& watcher, bool& cancelled, std::uint64_t total);
  // False when the call is cancelled.
  [[nodiscard]] bool add(std::uint64_t bytes);
  [[nodiscard]] bool begin() { return add(0); }
  // The rest at once, where the total was an estimate.
  [[nodiscard]] bool finish();

 private:
  const ZoLibrary::Watcher& watcher_;
  bool& cancelled_;
  std::uint64_t done_ = 0, total_;
};

class Change;

// What is known of where an entry ends.
enum class Extent {
  kSound,    // its check value proves it
  kUnknown,  // nothing protects it, or it has no data
  kDamaged,
};

class LibraryCore {
 public:
  LibraryCore();
  ~LibraryCore();

  static constexpr std::size_t kPiece = std::size_t{64} << 10;  // larger ones leave the cache

  // ---- Opening, closing, what is there (library_core.cpp) ----
  int open(const ZoFileName& library, int access, ZoFile::CreationMode mode, unsigned int timeOut);
  int close();
  [[nodiscard]] bool isOpen() const noexcept { return file.isOpen(); }
  // 1, 3 for a URL, 1004.
  [[nodiscard]] int mayRead(const ZoFileName* member = nullptr) const;
  [[nodiscard]] int mayWrite(const ZoFileName* member = nullptr) const;
  // Makes the index that of the file as it is.
  int refresh();
  // The same for a writer, who also finishes or undoes what a killed one began. Opening does so
  // only where nothing can be lost by it.
  int settle(bool isOpening = false);
  // The same after what has succeeded already.
  void settleIfPossible(bool isOpening = false) noexcept;
  // Whether what follows the last entry is what a killed writer of this library leaves. Nothing
  // else is ever cut.
  [[nodiscard]] bool isOwnTail();
  // Whether a member is being added behind the last one, or was when its writer was killed.
  [[nodiscard]] bool isBeingAdded() { return tailEnd() == ScanEnd::kClosedGate; }
  // Makes the header that of the file as it is.
  int refreshHeader();

  // ---- Members by name (find.cpp) ----
  // Finds a live member. The entry is as it stands in the file now.
  int find(const ZoFileName& member, RawEntry& entry);
  // The entry at a position.
  int findAt(std::uint64_t position, RawEntry& entry);
  // An entry as it stands in the file.
  [[nodiscard]] bool load(const IndexEntry& from, RawEntry& entry);
  [[nodiscard]] int notFound() const { return notFound(scan.end); }
  [[nodiscard]] ZoLibEntry publicEntry(const IndexEntry& entry) const;
  [[nodiscard]] ZoLibEntry publicEntry(const RawEntry& entry) const;
  // The name's bytes; false for one that has none.
  [[nodiscard]] static bool encodeName(const ZoFileName& name, std::string& bytes);

  // ---- Adding (add.cpp) ----
  int add(MemberSource& source, const ZoFileName& member, const MemberTimes& times, bool replace,
          ZoLibrary::compMode mode, int level);

  int beginBatch();
  // Commits what was added since. 0 also without a batch.
  int endBatch();
  int cancelBatch();

  // ---- Changing entries (change_entry.cpp) ----
  int rename(const ZoFileName& member, const ZoFileName& newName);
  int remove(const ZoFileName& member, bool physically);
  int recover(const ZoFileName& member);
  int recover(const ZoLibEntry& entry);
  int setTimes(std::uint64_t position, const MemberTimes& times);
  int setValue(std::uint64_t value);

  // ---- Reading members (extract.cpp) ----
  // 0, 1000 when the check value does not hold, 1.
  int readMember(const RawEntry& entry, ByteSink& out, Progress& watched);
  int extract(const ZoFileName& member, const ZoFileName& target);
  int verify(const ZoLibEntry& entry);
  // Reads the data where its fields alone do not tell. `goesOn` may end it.
  [[nodiscard]] Extent extentOf(const RawEntry& entry, Progress& goesOn);
  // Whether the entry's data are a library themselves: then entries in it are no damage.
  [[nodiscard]] bool holdsLibrary(const RawEntry& entry);

  // ---- Rewriting the file (rewrite.cpp) ----
  // Without the entries that `drops` names, in one step.
  int rewrite(const std::function<bool(const IndexEntry&)>& drops);
  int reorganize();

  // ---- Copying what can be read (salvage.cpp) ----
  int salvageInto(LibraryCore& target, const std::function<bool(const ZoLibEntry&, int)>& report);

  [[nodiscard]] Progress progress(std::uint64_t total) {
    return Progress(watcher, cancelled, total);
  }
  // Does a reader's work, and once more when another process has changed the file meanwhile.
  int lookAgain(const std::function<int()>& work);

  ZoFileName name;    // as it was opened
  std::wstring path;  // in full
  bool writable = false;
  unsigned int opening = 0;  // which one it is, for members that outlive it
  LibraryFile file;
  LibraryHeader header;
  LibraryIndex index;
  ScanResult scan;
  ZoLibrary::Watcher watcher;
  bool cancelled = false;
  std::vector<MemberPlace*> places;

  // Members that were added and not yet committed, and their names.
  std::unique_ptr<Change> batch;
  LibraryIndex batched;

  // The index is that of this file; or of none.
  bool isIndexed = false;
  LibraryFile::Signature indexed;

 private:
  static constexpr int kAttempts = 8;  // to read what another process changes all the time

  // The member that was looked for first since the file changed, and what came of it.
  struct FirstFind {
    std::wstring name;
    LibraryFile::Signature signature;
    int code = 0;
    RawEntry entry = {};
  };

  int extractOnce(const ZoFileName& member, const ZoFileName& target);
  int openFile(int access, ZoFile::CreationMode mode, unsigned int timeOut);
  int beginNew(ZoFile::CreationMode mode);
  int readHeader();
  int buildIndex();
  [[nodiscard]] static int notFound(ScanEnd end);
  [[nodiscard]] const FirstFind* findFirst(const ZoFileName& member);
  [[nodiscard]] bool reopen(const SystemPath& system) noexcept;
  // Lets go of the file and all that is known of it. Needs no memory.
  bool release() noexcept;
  struct ReleaseUnless;
  void movePlaces(const std::function<bool(const IndexEntry&)>& drops);
  int recoverAt(Change& change, const IndexEntry& found);
  int finishRedo();
  int cutTail();
  [[nodiscard]] ScanEnd tailEnd();
  [[nodiscard]] bool endsWhereItSays();
  [[nodiscard]] bool mayDrop(const std::function<bool(const IndexEntry&)>& drops,
                             Progress& watched);

  WriteLock lock_;
  std::optional<FirstFind> firstFind_;
};

}  // namespace zo
