#include <zo/library/packed_member.h>

#include <istream>

#include "library/packed_content.h"
#include "platform/address_range.h"

using zo::PackedContent;

namespace zo {
namespace {

// What a source gives, kept as it comes.
class SpoolTarget final : public PackTarget {
 public:
  explicit SpoolTarget(Spool& spool) : spool_(spool) {}
  bool write(Bytes bytes) noexcept override { return spool_.write(bytes); }
  [[nodiscard]] std::uint64_t size() const override { return spool_.size(); }
  [[nodiscard]] bool restart() noexcept override { return spool_.clear(), true; }

 private:
  Spool& spool_;
};

}  // namespace

// ---- What is packed ----

bool PackedContent::pack(MemberSource& source, ZoLibrary::compMode mode, int level,
                         Progress& progress, ReusedMemory& memory) {
  SpoolTarget target(data_);
  return progress.begin() && packMember(source, mode, level, target, progress, memory, entry_) &&
         progress.finish();
}

bool PackedContent::writeTo(PackTarget& target, Progress& progress, ReusedMemory&,
                            RawEntry& entry) {
  WatchedSink sink(target, progress);
  entry.record.storedSize = data_.size();
  entry.record.size = entry_.record.size;
  entry.record.crc = entry_.record.crc;
  entry.record.mode = entry_.record.mode;
  entry.record.flags = entry_.record.flags;
  entry.trailer = entry_.trailer;
  return copyPart(data_, 0, data_.size(), sink);
}

// ---- Streams ----

namespace {

// A stream that throws nothing meanwhile, whatever its user asked for.
class Unthrowing {
 public:
  explicit Unthrowing(std::istream& stream) : stream_(stream), mask_(stream.exceptions()) {
    stream_.exceptions(std::ios_base::goodbit);
  }
  Unthrowing(const Unthrowing&) = delete;
  Unthrowing& operator=(const Unthrowing&) = delete;
  ~Unthrowing() {
    try {
      stream_.exceptions(mask_);
    } catch (...) {  // NOLINT(bugprone-empty-catch): it has the mask, and tells of its state
    }
  }

 private:
  std::istream& stream_;
  std::ios_base::iostate mask_;
};

// All that is left of it.
bool readAll(std::istream& source, Spool& to) {
  const Unthrowing reads(source);
  std::vector<char> piece(kPiece);
  while (source.read(piece.data(), static_cast<std::streamsize>(piece.size())), source.gcount()) {
    const auto count = static_cast<std::size_t>(source.gcount());
    if (!to.write({reinterpret_cast<const unsigned char*>(piece.data()), count})) return false;
  }
  return !source.bad() && source.eof();
}

}  // namespace

// ---- Who packs ----

class PackerCore {
 public:
  ReusedMemory memory;
  Watch watch{.watcher = {}, .isShared = false};
};

}  // namespace zo

// ---- ZoPackedMember ----

ZoPackedMember::ZoPackedMember() noexcept = default;
ZoPackedMember::ZoPackedMember(ZoPackedMember&& other) noexcept = default;
ZoPackedMember& ZoPackedMember::operator=(ZoPackedMember&& other) noexcept = default;
ZoPackedMember::~ZoPackedMember() = default;

std::uint64_t ZoPackedMember::size() const noexcept { return content_ ? content_->size() : 0; }

std::uint64_t ZoPackedMember::storedSize() const noexcept {
  return content_ ? content_->storedSize() : 0;
}

bool ZoPackedMember::isCompressed() const noexcept { return content_ && content_->isCompressed(); }

ZoFileTime ZoPackedMember::created() const noexcept {
  return content_ ? ZoFileTime(content_->times.created) : ZoFileTime();
}

ZoFileTime ZoPackedMember::accessed() const noexcept {
  return content_ ? ZoFileTime(content_->times.accessed) : ZoFileTime();
}

ZoFileTime ZoPackedMember::written() const noexcept {
  return content_ ? ZoFileTime(content_->times.written) : ZoFileTime();
}

void ZoPackedMember::setTimes(ZoFileTime created, ZoFileTime accessed,
                              ZoFileTime written) noexcept {
  if (content_) content_->times = {created, accessed, written};
}

// ---- ZoPacker ----

ZoPacker::ZoPacker() : core_(std::make_unique<zo::PackerCore>()) {}
ZoPacker::~ZoPacker() = default;

int ZoPacker::packFrom(zo::MemberSource& source, ZoPackedMember& packed, ZoLibrary::compMode mode,
                       int level) {
  auto content = std::make_unique<PackedContent>();
  zo::Progress progress(core_->watch, source.size());
  if (!content->pack(source, mode, level, progress, core_->memory)) return ZoResult::refused;
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  content->times = {now, now, now};
  packed.content_ = std::move(content);
  return ZoResult::ok;
}

int ZoPacker::pack(const ZoFileName& source, ZoPackedMember& packed, ZoLibrary::compMode mode,
                   int level) {
  packed = ZoPackedMember();
  ZoFile file;
  if (file.open(source, ZoFile::kRead, ZoFile::kOpenExisting, ZoFile::kShareRead,
                ZoFile::kSequential)) {
    return ZoResult::refused;
  }
  return pack(file, packed, mode, level);
}

int ZoPacker::pack(ZoFile& source, ZoPackedMember& packed, ZoLibrary::compMode mode, int level) {
  packed = ZoPackedMember();
  zo::FileSource bytes(source);
  zo::MemberTimes times;
  if (!bytes.isReadable() || !zo::timesOf(source, times)) return ZoResult::refused;
  if (const int code = packFrom(bytes, packed, mode, level)) return code;
  packed.content_->times = times;
  return ZoResult::ok;
}

int ZoPacker::pack(std::istream& source, ZoPackedMember& packed, ZoLibrary::compMode mode,
                   int level) {
  packed = ZoPackedMember();
  zo::Spool spool(PackedContent::kMostMemory);
  if (!zo::readAll(source, spool)) return ZoResult::refused;
  zo::StoreSource bytes(spool);
  return packFrom(bytes, packed, mode, level);
}

int ZoPacker::pack(const void* bytes, std::size_t size, ZoPackedMember& packed,
                   ZoLibrary::compMode mode, int level) {
  packed = ZoPackedMember();
  if (!zo::canBeMemory(bytes, size)) return ZoResult::refused;
  zo::MemoryStore store({static_cast<const unsigned char*>(bytes), size});
  zo::StoreSource source(store);
  return packFrom(source, packed, mode, level);
}

void ZoPacker::onProgress(ZoLibrary::Watcher watcher) { core_->watch.watcher = std::move(watcher); }

bool ZoPacker::wasCancelled() const noexcept { return core_->watch.isCancelled; }

std::uint64_t ZoPacker::memoryFor(std::uint64_t size, int level) noexcept {
  constexpr std::uint64_t kFast = 64 << 10, kNormal = 32 << 20, kBest = 256 << 20;
  constexpr std::uint64_t kFixed = 12 << 20, kPerByte = 12;
  const std::uint64_t window = level == ZoLibrary::kFast   ? kFast
                               : level == ZoLibrary::kBest ? kBest
                                                           : kNormal;
  return kFixed + kPerByte * std::min(size, window);
}
