#include "library/member.h"

#include <algorithm>
#include <utility>

#include "files/keep_reason.h"
#include "library/reading.h"
#include "platform/time_value.h"

namespace zo {
namespace {

bool isSet(FILETIME time) { return time.dwLowDateTime != 0 || time.dwHighDateTime != 0; }

}  // namespace

LibraryMember::LibraryMember(std::shared_ptr<LibraryDoor> door, LibraryState& library,
                             const ZoFileName& name)
    : door_(std::move(door)), library_(library), name_(name.deepCopy()), place_(library) {}

int LibraryMember::openToRead(const std::shared_ptr<LibraryDoor>& door, const MemberRef& wanted,
                              std::shared_ptr<LibraryMember>& opened) {
  std::shared_ptr<LibraryMember> member;
  const auto find = [&](LibraryState& library, RawEntry& entry) {
    if (const int missing = findMember(library, wanted, entry)) return missing;
    member.reset(new LibraryMember(door, library, wanted.name ? *wanted.name : wanted.entry->name));
    member->place_.entry = entry;
    return int{ZoResult::ok};
  };
  const int code = readAside(door, {wanted.name}, find, [&](Reading& reading) {
    return member->load(reading) ? ZoResult::ok : ZoResult::refused;
  });
  if (code == ZoResult::ok) opened = std::move(member);
  return code;
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
bool LibraryMember::load(Reading& reading) {
  if (!reading.entry().record.has(kIsCompressed)) return !reading.contradictsItself();
  kind_ = Kind::kUnpacked;
  return reading.into(unpacked_) == ZoResult::ok;
}

std::shared_ptr<LibraryMember> LibraryMember::again() const {
  std::shared_ptr<LibraryMember> member;
  std::unique_ptr<Reading> reading;
  {
    const FilesLock lock;
    if (isWriting() || !isUsable()) return nullptr;
    member.reset(new LibraryMember(door_, library_, name_));
    member->place_.entry = place_.entry;
    reading = std::make_unique<Reading>(door_, library_, place_.entry);
  }
  return member->load(*reading) ? member : nullptr;
}

int LibraryMember::finish() {
  if (!isWriting()) return ZoResult::ok;
  kind_ = Kind::kStored;
  if (!isUsable() || isIncomplete_ || file_.seekToBegin() != 0) return ZoResult::refused;
  FileSource source(file_);
  MemberTimes all;
  if (!timesOf(file_, all)) return ZoResult::refused;
  const NewMember member{.name = name_, .times = withThoseSet(all), .replaces = true};
  PackedOnTheWay content(source, mode_, ZoLibrary::kNormal);
  const int code = run(door_, Access::kWrite, {&name_},
                       [&](LibraryState& library) { return addMember(library, content, member); });
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
    case Kind::kUnpacked:
      return static_cast<std::int64_t>(unpacked_.size());
    default:
      return file_.size();
  }
}

unsigned int LibraryMember::read(void* buffer, unsigned int count) {
  if (kind_ == Kind::kWritten) return file_.read(buffer, count);
  const std::int64_t rest = size() - position_;
  if (rest <= 0) return 0;
  count = static_cast<unsigned int>(std::min<std::int64_t>(count, rest));
  const std::span<unsigned char> to(static_cast<unsigned char*>(buffer), count);
  const auto at = static_cast<std::uint64_t>(position_);
  const bool isRead = kind_ == Kind::kUnpacked
                          ? unpacked_.read(at, to)
                          : library_.bytes().read(place_.entry.dataPosition() + at, to);
  if (!isRead) {
    keepReason(L"read");  // the end of a file has none
    return 0;
  }
  position_ += count;
  return count;
}

unsigned int LibraryMember::write(const void* data, unsigned int count) {
  if (!isWriting()) return keepReason(L"write", ERROR_ACCESS_DENIED), 0;
  const unsigned int done = file_.write(data, count);
  if (done != count) isIncomplete_ = true;
  return done;
}

std::int64_t LibraryMember::seek(std::int64_t offset, ZoFile::MoveMethod method) {
  if (kind_ == Kind::kWritten) return file_.seek(offset, method);
  std::int64_t base = 0;
  if (method == ZoFile::kCurrent) base = position_;
  if (method == ZoFile::kEnd) base = size();
  constexpr std::int64_t kMost = std::int64_t{1} << 62;
  if (offset > kMost || offset < -base) return keepReason(L"seek", ERROR_NEGATIVE_SEEK), -1;
  position_ = base + offset;
  return position_;
}

int LibraryMember::setEndOfFile() {
  if (!isWriting()) return keepReason(L"setEndOfFile", ERROR_ACCESS_DENIED);
  const int code = file_.setEndOfFile();
  if (code) isIncomplete_ = true;
  return code;
}

// ---- Times ----

MemberTimes LibraryMember::times() {
  if (kind_ != Kind::kWritten) {
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
