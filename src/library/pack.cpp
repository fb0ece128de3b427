#include "library/pack.h"

#include <zo/persist/lzma_utils.h>

#include "library/spool.h"

namespace zo {
namespace {

constexpr std::size_t kMostSpooled = std::size_t{16} << 20;

// A sample is worth its time for what takes much longer to compress.
constexpr std::uint64_t kSampledFrom = 256 << 10;
constexpr std::size_t kSamples = 8, kSampleSize = 8 << 10;
constexpr std::size_t kLeastGain = 100;  // of so many bytes one

// What passes through on its way into the library: counted, reported, with its check value.
class WatchedSource final : public ByteSource {
 public:
  WatchedSource(MemberSource& source, Progress& progress) : source_(source), progress_(progress) {}

  Bytes next() noexcept override {
    const Bytes piece = source_.next();
    crc_ = crc32Update(crc_, piece);
    size_ += piece.size();
    return progress_.add(piece.size()) ? piece : Bytes();
  }
  [[nodiscard]] std::uint32_t crc() const { return ~crc_; }
  [[nodiscard]] std::uint64_t size() const { return size_; }

 private:
  MemberSource& source_;
  Progress& progress_;
  std::uint32_t crc_ = kCrcStart;
  std::uint64_t size_ = 0;
};

class CountingSink final : public ByteSink {
 public:
  bool write(Bytes bytes) noexcept override { return size_ += bytes.size(), true; }
  [[nodiscard]] std::uint64_t size() const { return size_; }

 private:
  std::uint64_t size_ = 0;
};

class Packing {
 public:
  Packing(MemberSource& source, PackTarget& target, Progress& progress, ReusedMemory& memory,
          RawEntry& entry)
      : source_(source), target_(target), progress_(progress), memory_(memory), entry_(entry) {}

  bool run(ZoLibrary::compMode mode, int level) {
    // A container has no room for more.
    const bool mayCompress = mode != ZoLibrary::kStore && source_.size() <= kMaxContent;
    if (!mayCompress || (mode == ZoLibrary::kAutomatic && !promisesGain())) return store();
    const int status = compress(level);
    if (status == LzmaUtils::inputEnded && !progress_.isCancelled()) return runAsRead(mode, level);
    if (status) return false;
    if (mode != ZoLibrary::kAutomatic || target_.size() < source_.size()) return true;
    return source_.restart() && target_.restart() && store();
  }

 private:
  // The size was wrong: all is read before it is packed.
  bool runAsRead(ZoLibrary::compMode mode, int level) {
    Spool spool(kMostSpooled);
    WatchedSource source(source_, progress_);
    if (!source_.restart() || !copyAll(source, spool) || !source_.hasEnded()) return false;
    StoreSource exact(spool);
    return target_.restart() &&
           Packing(exact, target_, progress_, memory_, entry_).run(mode, level);
  }

  // Whether pieces from all over a large member get smaller. Where it cannot be told, they do.
  bool promisesGain() {
    if (source_.size() < kSampledFrom) return true;
    std::vector<unsigned char> sample(kSamples * kSampleSize);
    const std::uint64_t step = (source_.size() - kSampleSize) / (kSamples - 1);
    bool isRead = true;
    for (std::size_t i = 0; i < kSamples && isRead; ++i) {
      isRead = source_.sample(i * step, std::span(sample).subspan(i * kSampleSize, kSampleSize));
    }
    if (!source_.restart() || !isRead) return true;
    MemorySource in{Bytes(sample)};
    CountingSink packed;
    const int fast = levelOf(static_cast<unsigned>(ZoLibrary::kFast));
    return compressStream(in, sample.size(), fast, packed, &memory_) ||
           packed.size() + sample.size() / kLeastGain < sample.size();
  }

  int compress(int level) {
    WatchedSource source(source_, progress_);
    if (const int status = compressStream(source, source_.size(),
                                          levelOf(static_cast<unsigned>(level)), target_, &memory_))
      return source.size() == source_.size() ? int{LzmaUtils::outputFull} : status;
    // Any other level is written as what it counts as.
    const bool isKnown = level == ZoLibrary::kFast || level == ZoLibrary::kBest;
    entry_.record.mode = static_cast<std::uint16_t>(isKnown ? level : ZoLibrary::kNormal);
    entry_.record.flags = kIsCompressed;
    fill(source);
    entry_.trailer = {.size = static_cast<std::uint32_t>(source.size()), .crc = source.crc()};
    return LzmaUtils::success;
  }

  bool store() {
    WatchedSource source(source_, progress_);
    if (!copyAll(source, target_) || progress_.isCancelled() || !source_.hasEnded()) return false;
    entry_.record.mode = kStoredMode;
    entry_.record.flags = 0;
    fill(source);
    entry_.trailer = {};
    return true;
  }

  void fill(const WatchedSource& source) {
    entry_.record.storedSize = target_.size();
    entry_.record.size = source.size();
    entry_.record.crc = source.crc();
  }

  MemberSource& source_;
  PackTarget& target_;
  Progress& progress_;
  ReusedMemory& memory_;
  RawEntry& entry_;
};

}  // namespace

// ---- Sources ----

FileSource::FileSource(ZoFile& file) : file_(file), begin_(file.currentPos()) {
  const std::int64_t end = file.size();
  knowsSize_ = begin_ >= 0 && end >= 0;
  if (knowsSize_) end_ = size_ = static_cast<std::uint64_t>(std::max(end, begin_) - begin_);
  constexpr std::uint64_t kLeast = 4096;  // files that do not tell their size have some
  buffer_.resize(static_cast<std::size_t>(std::clamp<std::uint64_t>(size_, kLeast, kPiece)));
}

bool FileSource::restart() {
  given_ = 0;
  end_ = size_;
  hasGrown_ = false;
  return file_.seek(begin_) == begin_;
}

// Fewer bytes than it said are all that it has when the file says so now. One that never tells its
// size ends where it gives nothing more; one that did not do so at first is asked again.
bool FileSource::hasEnded() {
  if (knowsSize_ && given_ >= size_) return true;
  const std::int64_t end = file_.size();
  if (end < 0) return !knowsSize_;
  return begin_ >= 0 && static_cast<std::uint64_t>(std::max(end, begin_) - begin_) <= given_;
}

bool FileSource::sample(std::uint64_t offset, std::span<unsigned char> to) {
  const std::int64_t at = begin_ + static_cast<std::int64_t>(offset);
  return file_.seek(at) == at &&
         file_.read(to.data(), static_cast<unsigned int>(to.size())) == to.size();
}

// Behind the end that it told. What came meanwhile is read as well, but once: a log that grows as
// fast as it is read has no end. What has more than it tells, as the system's files, is read on.
bool FileSource::goesOn() noexcept {
  const auto now = static_cast<std::uint64_t>(std::max(file_.size(), begin_) - begin_);
  if (now <= given_) return true;
  if (hasGrown_) return false;
  end_ = now;
  return hasGrown_ = true;
}

Bytes FileSource::next() noexcept {
  if (knowsSize_ && given_ >= end_ && !goesOn()) return {};
  std::uint64_t most = buffer_.size();
  if (knowsSize_ && given_ < end_) most = std::min(most, end_ - given_);
  const unsigned int got = file_.read(buffer_.data(), static_cast<unsigned int>(most));
  given_ += got;
  return {buffer_.data(), got};
}

StoreSource::StoreSource(ByteStore& store)
    : store_(store),
      buffer_(static_cast<std::size_t>(std::min<std::uint64_t>(store.size(), kPiece))) {}

Bytes StoreSource::next() noexcept {
  const auto count =
      static_cast<std::size_t>(std::min<std::uint64_t>(store_.size() - at_, buffer_.size()));
  if (count == 0 || !store_.read(at_, std::span(buffer_).first(count))) return {};
  at_ += count;
  return Bytes(buffer_).first(count);
}

bool packMember(MemberSource& source, ZoLibrary::compMode mode, int level, PackTarget& target,
                Progress& progress, ReusedMemory& memory, RawEntry& entry) {
  return Packing(source, target, progress, memory, entry).run(mode, level);
}

}  // namespace zo
