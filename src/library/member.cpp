#include "library/member.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "files/buffered_file.h"
#include "library/file_source.h"
#include "library/read_member.h"
#include "library/time_value.h"

namespace zo {
namespace {

constexpr std::size_t kMostMemory = std::size_t{64} << 20;

// Gone with its last handle.
bool openTemporary(ZoFile& file) {
  ZoFileName name;
  return file.createTemp(name, ZoFile::kReadWrite, ZoFile::kCreateNew, ZoFile::kShareNone,
                         ZoFile::kTemporary | ZoFile::kDeleteOnClose) == ZoResult::ok;
}

// Into memory, or into a file when it is too much for that.
class ContentSink final : public ByteSink {
 public:
  ContentSink(std::vector<unsigned char>& memory, ZoFile& file) : memory_(memory), file_(file) {}

  bool write(Bytes bytes) noexcept override {
    try {
      if (!file_.isOpen()) {
        if (memory_.size() + bytes.size() <= kMostMemory) {
          memory_.insert(memory_.end(), bytes.begin(), bytes.end());
          return true;
        }
        if (!openTemporary(file_) || !store(memory_)) return false;
        std::vector<unsigned char>().swap(memory_);
      }
      return store(bytes);
    } catch (const std::bad_alloc&) {
      return false;
    }
  }

 private:
  bool store(Bytes bytes) { return writeAll(file_, bytes.data(), bytes.size()) == bytes.size(); }

  std::vector<unsigned char>& memory_;
  ZoFile& file_;
};

bool isSet(FILETIME time) { return time.dwLowDateTime != 0 || time.dwHighDateTime != 0; }

}  // namespace

LibraryMember::LibraryMember(std::shared_ptr<LibraryDoor> door, LibraryState& library,
                             const ZoFileName& name)
    : door_(std::move(door)), library_(library), name_(name.deepCopy()), place_(library) {}

int LibraryMember::openToRead(const std::shared_ptr<LibraryDoor>& door, const MemberRef& wanted,
                              std::shared_ptr<LibraryMember>& opened) {
  const ZoFileName& name = wanted.name ? *wanted.name : wanted.entry->name;
  return run(door, Access::kRetry, {&name}, [&](LibraryState& library) {
    const std::shared_ptr<LibraryMember> member(new LibraryMember(door, library, name));
    if (const int missing = findMember(library, wanted, member->place_.entry)) return missing;
    if (!member->load()) return ZoResult::refused;
    opened = member;
    return ZoResult::ok;
  });
}

int LibraryMember::openToWrite(const std::shared_ptr<LibraryDoor>& door, const ZoFileName& name,
                               ZoLibrary::compMode mode, std::shared_ptr<LibraryMember>& opened) {
  return run(door, Access::kWrite, {&name}, [&](LibraryState& library) {
    const std::shared_ptr<LibraryMember> member(new LibraryMember(door, library, name));
    std::string bytes;
    member->kind_ = Kind::kWritten;
    member->mode_ = mode;
    if (!encodeName(name, bytes) || !openTemporary(member->file_)) return ZoResult::refused;
    opened = member;
    return ZoResult::ok;
  });
}

// What is stored stays in the library; anything else comes out of it at once.
bool LibraryMember::load() {
  const RawEntry& entry = place_.entry;
  if (!entry.record.has(kIsCompressed)) {
    return !entry.record.contradictsItself(library_.header().counter());
  }
  ContentSink sink(memory_, file_);
  Progress watched = library_.progress(entry.contentSize());
  if (readMember(library_, entry, sink, watched)) return false;
  kind_ = file_.isOpen() ? Kind::kInFile : Kind::kInMemory;
  return true;
}

std::shared_ptr<LibraryMember> LibraryMember::again() const {
  if (isWriting() || !isUsable()) return nullptr;
  const std::shared_ptr<LibraryMember> member(new LibraryMember(door_, library_, name_));
  member->place_.entry = place_.entry;
  return member->load() ? member : nullptr;
}

int LibraryMember::finish() {
  if (!isWriting()) return ZoResult::ok;
  kind_ = Kind::kStored;
  if (!isUsable() || isIncomplete_ || file_.seekToBegin() != 0) return ZoResult::refused;
  FileSource source(file_);
  MemberTimes all;
  if (!timesOf(file_, all)) return ZoResult::refused;
  const NewMember member{.name = name_,
                         .times = withThoseSet(all),
                         .replaces = true,
                         .mode = mode_,
                         .level = ZoLibrary::kNormal};
  const int code = run(door_, Access::kWrite, {&name_},
                       [&](LibraryState& library) { return addMember(library, source, member); });
  file_.cancel();  // what it held has its place now
  return code;
}

void LibraryMember::drop() {
  if (!isWriting()) return;
  isDropped_ = true;
  file_.cancel();
}

// ---- Content ----

std::int64_t LibraryMember::size() {
  switch (kind_) {
    case Kind::kStored:
      return static_cast<std::int64_t>(place_.entry.record.storedSize);
    case Kind::kInMemory:
      return static_cast<std::int64_t>(memory_.size());
    default:
      return file_.size();
  }
}

unsigned int LibraryMember::read(void* buffer, unsigned int count) {
  if (kind_ == Kind::kInFile || kind_ == Kind::kWritten) return file_.read(buffer, count);
  const std::int64_t rest = size() - position_;
  if (rest <= 0) return 0;
  count = static_cast<unsigned int>(std::min<std::int64_t>(count, rest));
  if (kind_ == Kind::kInMemory) {
    std::memcpy(buffer, memory_.data() + position_, count);
  } else {
    const auto at = place_.entry.dataPosition() + static_cast<std::uint64_t>(position_);
    if (!library_.bytes().read(at, {static_cast<unsigned char*>(buffer), count})) return 0;
  }
  position_ += count;
  return count;
}

unsigned int LibraryMember::write(const void* data, unsigned int count) {
  if (!isWriting()) return 0;
  const unsigned int done = file_.write(data, count);
  if (done != count) isIncomplete_ = true;
  return done;
}

std::int64_t LibraryMember::seek(std::int64_t offset, ZoFile::MoveMethod method) {
  if (kind_ == Kind::kInFile || kind_ == Kind::kWritten) return file_.seek(offset, method);
  std::int64_t base = 0;
  if (method == ZoFile::kCurrent) base = position_;
  if (method == ZoFile::kEnd) base = size();
  constexpr std::int64_t kMost = std::int64_t{1} << 62;
  if (offset > kMost || offset < -base) return -1;
  position_ = base + offset;
  return position_;
}

int LibraryMember::setEndOfFile() {
  if (!isWriting()) return ZoResult::refused;
  const int code = file_.setEndOfFile();
  if (code) isIncomplete_ = true;
  return code;
}

// ---- Times ----

MemberTimes LibraryMember::times() {
  if (!file_.isOpen() || kind_ == Kind::kInFile) {
    const EntryRecord& record = place_.entry.record;
    return {.created = fileTime(record.created),
            .accessed = fileTime(record.accessed),
            .written = fileTime(record.written)};
  }
  return withThoseSet({.created = file_.creationTime(),
                       .accessed = file_.lastAccessTime(),
                       .written = file_.lastWriteTime()});
}

MemberTimes LibraryMember::withThoseSet(MemberTimes times) const {
  if (isSet(times_.created)) times.created = times_.created;
  if (isSet(times_.accessed)) times.accessed = times_.accessed;
  if (isSet(times_.written)) times.written = times_.written;
  return times;
}

int LibraryMember::setTimes(const MemberTimes& times) {
  if (isWriting()) {
    // The others go on following the temporary file.
    const MemberTimes now = this->times();
    const auto keep = [](FILETIME& kept, FILETIME wanted, FILETIME current) {
      if (CompareFileTime(&wanted, &current) != 0) kept = wanted;
    };
    keep(times_.created, times.created, now.created);
    keep(times_.accessed, times.accessed, now.accessed);
    keep(times_.written, times.written, now.written);
    return ZoResult::ok;
  }
  const int code = run(door_, Access::kWrite, {}, zo::setTimes, place_.entry.position, times);
  if (code == ZoResult::ok) times.storeIn(place_.entry.record);
  return code;
}

bool LibraryMember::copyTo(ZoFile& file) {
  if (isWriting()) return false;
  const std::int64_t position = seek(0, ZoFile::kCurrent);
  std::vector<unsigned char> buffer(kPiece);
  if (!openTemporary(file) || seek(0, ZoFile::kBegin) != 0) return false;
  for (std::int64_t rest = size(); rest > 0;) {
    const unsigned int got = read(buffer.data(), static_cast<unsigned int>(buffer.size()));
    if (got == 0 || file.write(buffer.data(), got) != got) return false;
    rest -= got;
  }
  return file.seek(position) == position;
}

}  // namespace zo
