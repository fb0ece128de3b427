// Reading members as a whole: into a file, or only to see that they are as they were added.
#include <zo/persist/zip.h>

#include <algorithm>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "files/fresh_file.h"
#include "files/replace_file.h"
#include "library/library_core.h"
#include "library/member_data.h"
#include "library/time_value.h"

namespace zo {
namespace {

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

// Looks only whether it is to go on.
class NoSink final : public ByteSink {
 public:
  explicit NoSink(Progress& goesOn) : goesOn_(goesOn) {}
  bool write(Bytes) noexcept override { return goesOn_.add(0); }

 private:
  Progress& goesOn_;
};

// The file that is to become the target of an extraction; removed unless it does.
class Target final : public ByteSink {
 public:
  explicit Target(const ZoFileName& name)
      : name_(name),
        fresh_(createFresh(stemBeside(name), kEndingBeside, GENERIC_READ | GENERIC_WRITE | DELETE,
                           FILE_SHARE_READ, FILE_ATTRIBUTE_NORMAL)) {}

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
    std::wstring renamed(target);
    if (fileApi().rename(fresh_.file.get(), target)) {
      fresh_.path.swap(renamed);
      fresh_.isOurs = !fresh_.file.close();
      return !fresh_.isOurs;
    }
    // Something has the name, or the file system cannot do that.
    const bool replaces = fileApi().attributes(target) != INVALID_FILE_ATTRIBUTES;
    if (replaces && !fileApi().flush(fresh_.file.get())) return false;
    return fresh_.file.close() && putInPlace(fresh_, target, false);
  }

 private:
  const ZoFileName& name_;
  FreshFile fresh_;
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
  if (entry.record.contradictsItself(header.counter())) return ZoZip::checkMismatch;
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
  return lookAgain([&] { return extractOnce(member, target); });
}

int LibraryCore::extractOnce(const ZoFileName& member, const ZoFileName& target) {
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
  return lookAgain([&] {
    RawEntry raw;
    if (const int code = findAt(entry.position, raw)) return code;
    Progress watched = progress(raw.contentSize());
    NoSink sink(watched);
    return readMember(raw, sink, watched);
  });
}

// ---- Where entries end ----

Extent LibraryCore::extentOf(const RawEntry& entry, Progress& goesOn) {
  const std::uint32_t counter = header.counter();
  if (entry.meetsTrailer()) return Extent::kSound;
  const bool isProtected = entry.record.has(kIsCompressed) || entry.record.protectsStored(counter);
  if (!isProtected && !entry.record.contradictsItself(counter)) return Extent::kUnknown;
  const ZoLibrary::Watcher none;
  bool ignored = false;
  Progress unwatched(none, ignored, 0);
  NoSink sink(goesOn);
  if (readMember(entry, sink, unwatched) != ZoResult::ok) return Extent::kDamaged;
  return entry.contentSize() != 0 ? Extent::kSound : Extent::kUnknown;
}

bool LibraryCore::holdsLibrary(const RawEntry& entry) {
  LibraryHeader inner;
  return entry.record.storedSize >= kHeaderSize && file.read(entry.dataPosition(), inner.room()) &&
         inner.hasMagic();
}

}  // namespace zo
