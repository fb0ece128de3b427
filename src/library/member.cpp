#include "library/member.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "library/file_source.h"
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
  bool store(Bytes bytes) {
    while (!bytes.empty()) {
      const std::size_t part = std::min<std::size_t>(bytes.size(), 1 << 30);
      const unsigned int done = file_.write(bytes.data(), static_cast<unsigned int>(part));
      if (done == 0) return false;
      bytes = bytes.subspan(done);
    }
    return true;
  }

  std::vector<unsigned char>& memory_;
  ZoFile& file_;
};

bool isSet(FILETIME time) { return time.dwLowDateTime != 0 || time.dwHighDateTime != 0; }

}  // namespace

LibraryMember::LibraryMember(std::shared_ptr<LibraryCore> core, const ZoFileName& name)
    : core_(std::move(core)), opening_(core_->opening), name_(name.deepCopy()) {}

LibraryMember::~LibraryMember() { std::erase(core_->places, &place_); }

bool LibraryMember::isUsable() const noexcept {
  return core_->isOpen() && core_->opening == opening_ && !place_.isGone && !isDropped_;
}

std::shared_ptr<LibraryMember> LibraryMember::openToRead(const std::shared_ptr<LibraryCore>& core,
                                                         const ZoFileName& name, int& code) {
  code = core->mayRead(&name);
  if (code) return nullptr;
  const std::shared_ptr<LibraryMember> member(new LibraryMember(core, name));
  code = core->lookAgain([&] {
    if (const int missing = core->find(name, member->place_.entry)) return missing;
    return member->load() ? ZoResult::ok : ZoResult::refused;
  });
  return code ? nullptr : member;
}

std::shared_ptr<LibraryMember> LibraryMember::openToWrite(const std::shared_ptr<LibraryCore>& core,
                                                          const ZoFileName& name,
                                                          ZoLibrary::compMode mode, int& code) {
  code = core->mayWrite(&name);
  if (code) return nullptr;
  const std::shared_ptr<LibraryMember> member(new LibraryMember(core, name));
  std::string bytes;
  member->kind_ = Kind::kWritten;
  member->mode_ = mode;
  if (!LibraryCore::encodeName(name, bytes) || !openTemporary(member->file_)) {
    code = ZoResult::refused;
  }
  return code ? nullptr : member;
}

bool LibraryMember::load() {
  std::erase(core_->places, &place_);
  core_->places.push_back(&place_);
  memory_.clear();
  file_.cancel();
  if (!place_.entry.record.has(kIsCompressed)) {
    return !place_.entry.record.contradictsItself(core_->header.counter());
  }
  ContentSink sink(memory_, file_);
  Progress watched = core_->progress(place_.entry.contentSize());
  if (core_->readMember(place_.entry, sink, watched)) return false;
  kind_ = file_.isOpen() ? Kind::kInFile : Kind::kInMemory;
  return true;
}

std::shared_ptr<LibraryMember> LibraryMember::again() const {
  if (isWriting() || !isUsable()) return nullptr;
  const std::shared_ptr<LibraryMember> member(new LibraryMember(core_, name_));
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
  all = withThoseSet(all);
  const int code = core_->add(source, name_, all, true, mode_, ZoLibrary::kNormal);
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
    if (!core_->file.read(at, {static_cast<unsigned char*>(buffer), count})) return 0;
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
  const int code = core_->setTimes(place_.entry.position, times);
  if (code == ZoResult::ok) times.storeIn(place_.entry.record);
  return code;
}

bool LibraryMember::copyTo(ZoFile& file) {
  if (isWriting()) return false;
  const std::int64_t position = seek(0, ZoFile::kCurrent);
  std::vector<unsigned char> buffer(LibraryCore::kPiece);
  if (!openTemporary(file) || seek(0, ZoFile::kBegin) != 0) return false;
  for (std::int64_t rest = size(); rest > 0;) {
    const unsigned int got = read(buffer.data(), static_cast<unsigned int>(buffer.size()));
    if (got == 0 || file.write(buffer.data(), got) != got) return false;
    rest -= got;
  }
  return file.seek(position) == position;
}

}  // namespace zo
