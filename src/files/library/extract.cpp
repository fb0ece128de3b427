// Reading members as a whole: into a file, or only to see that they are as they were added.
#include <zo/persist/zip.h>

#include <algorithm>

#include "files/fresh_file.h"
#include "files/library/library_core.h"
#include "files/library/time_value.h"
#include "files/replace_file.h"
#include "persist/crc32.h"
#include "persist/little_endian.h"
#include "platform/system_path.h"

namespace zo {
namespace {

// A member's data as a store of its own. What is small is read at once.
class MemberData final : public ByteStore {
 public:
  MemberData(LibraryFile& file, const RawEntry& entry)
      : file_(file), begin_(entry.dataPosition()), size_(entry.record.storedSize) {
    if (size_ > LibraryCore::kPiece) return;
    small_.resize(static_cast<std::size_t>(size_));
    if (!file_.read(begin_, small_)) small_.clear();
  }
  [[nodiscard]] std::uint64_t size() const noexcept override { return size_; }
  [[nodiscard]] bool read(std::uint64_t offset, std::span<unsigned char> to) noexcept override {
    if (offset > size_ || to.size() > size_ - offset) return false;
    if (small_.empty()) return file_.read(begin_ + offset, to);
    std::copy_n(small_.begin() + static_cast<std::ptrdiff_t>(offset), to.size(), to.begin());
    return true;
  }

 private:
  LibraryFile& file_;
  std::uint64_t begin_, size_;
  std::vector<unsigned char> small_;
};

class WatchedSink final : public ByteSink {
 public:
  WatchedSink(ByteSink& sink, Progress& progress) : sink_(sink), progress_(progress) {}
  bool write(Bytes bytes) noexcept override {
    return sink_.write(bytes) && progress_.add(bytes.size());
  }

 private:
  ByteSink& sink_;
  Progress& progress_;
};

class NoSink final : public ByteSink {
 public:
  bool write(Bytes) noexcept override { return true; }
};

// The file that is to become the target of an extraction; removed unless it does.
class Target final : public ByteSink {
 public:
  explicit Target(const ZoFileName& name)
      : name_(name),
        fresh_(createFresh(stemBeside(name), kEndingBeside, GENERIC_READ | GENERIC_WRITE | DELETE,
                           FILE_SHARE_READ, FILE_ATTRIBUTE_NORMAL)) {}
  ~Target() override {
    if (fresh_.name.empty()) return;
    const KeptError kept;
    const bool wasMade = static_cast<bool>(fresh_.file);
    fresh_.file.close();
    if (wasMade || isClosed_) discard(fresh_.name);
  }

  [[nodiscard]] bool isOpen() const { return static_cast<bool>(fresh_.file); }
  bool write(Bytes bytes) noexcept override {
    while (!bytes.empty()) {
      DWORD done = 0;
      const auto part = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1 << 30));
      if (!fileApi().write(fresh_.file.get(), bytes.data(), part, done)) return false;
      if (done == 0) return false;
      bytes = bytes.subspan(done);
    }
    return true;
  }
  // Brings it to its name. What it replaces is replaced by bytes that are on the disk.
  bool commit(const EntryRecord& record) {
    const FILETIME created = fileTime(record.created), accessed = fileTime(record.accessed),
                   written = fileTime(record.written);
    if (!fileApi().setTimes(fresh_.file.get(), &created, &accessed, &written)) return false;
    const SystemPath target(name_.fullName());
    if (fileApi().rename(fresh_.file.get(), target)) {
      fresh_.name = target;
      isClosed_ = true;
      if (!fresh_.file.close()) return false;
      fresh_.name.clear();
      return true;
    }
    // Something has the name, or the file system cannot do that.
    const bool replaces = fileApi().attributes(target) != INVALID_FILE_ATTRIBUTES;
    if (replaces && !fileApi().flush(fresh_.file.get())) return false;
    isClosed_ = true;
    if (!fresh_.file.close() || !putInPlace(fresh_.name, name_, false)) return false;
    fresh_.name.clear();
    return true;
  }

 private:
  const ZoFileName& name_;
  FreshFile fresh_;
  bool isClosed_ = false;
};

int copyStored(LibraryFile& file, const RawEntry& entry, ByteSink& out, std::uint32_t& crc) {
  const std::uint64_t size = entry.record.storedSize;
  std::vector<unsigned char> buffer(
      static_cast<std::size_t>(std::min<std::uint64_t>(size, LibraryCore::kPiece)));
  std::uint32_t running = kCrcStart;
  for (std::uint64_t done = 0; done < size; done += buffer.size()) {
    if (size - done < buffer.size()) {
      buffer.resize(static_cast<std::size_t>(size - done));
    }
    if (!file.read(entry.dataPosition() + done, buffer)) return ZoResult::refused;
    running = crc32Update(running, buffer);
    if (!out.write(buffer)) return ZoResult::refused;
  }
  crc = ~running;
  return ZoResult::ok;
}

}  // namespace

int LibraryCore::readMember(const RawEntry& entry, ByteSink& out, Progress& watched) {
  WatchedSink sink(out, watched);
  if (!watched.begin()) return ZoResult::refused;
  int code = ZoResult::ok;
  if (entry.record.has(kIsCompressed)) {
    MemberData data(file, entry);
    code = explodeStream(data, sink);
  } else {
    std::uint32_t crc = 0;
    code = copyStored(file, entry, sink, crc);
    const bool isProtected = entry.record.protectsStored(header.counter());
    if (code == ZoResult::ok && isProtected && crc != entry.record.crc) {
      code = ZoZip::checkMismatch;
    }
  }
  if (code == ZoResult::refused) return code;
  return watched.finish() ? code : ZoResult::refused;
}

int LibraryCore::extract(const ZoFileName& member, const ZoFileName& target) {
  if (const int code = mayRead(&member)) return code;
  if (target.isURL()) return ZoResult::invalid;
  RawEntry entry;
  if (const int code = find(member, entry)) return code;
  Progress watched = progress(entry.contentSize());
  Target out(target);
  if (!out.isOpen()) {
    reportFailure(L"open");
    return ZoResult::refused;
  }
  if (readMember(entry, out, watched)) return ZoResult::refused;
  if (out.commit(entry.record)) return ZoResult::ok;
  reportFailure(L"extract");
  return ZoResult::refused;
}

int LibraryCore::verify(const ZoLibEntry& entry) {
  if (const int code = mayRead()) return code;
  RawEntry raw;
  if (const int code = findAt(entry.position, raw)) return code;
  NoSink sink;
  Progress watched = progress(raw.contentSize());
  return readMember(raw, sink, watched);
}

}  // namespace zo
