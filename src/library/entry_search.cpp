#include "library/entry_search.h"

#include <algorithm>

#include "bytes/crc32.h"
#include "library/member_data.h"
#include "persist/part_source.h"

namespace zo {
namespace {

constexpr std::size_t kLargestEntry = kRecordSize + kLargestName;  // without its data
constexpr std::size_t kLargestPiece = ReadWindow::kSize - kLargestEntry;
constexpr std::size_t kSmallOverlap = 4096;  // where not all can be read
constexpr int kMostFailures = 1000;          // in a row: then the device is gone

// Counts what comes, and has enough at some point.
class LimitedSink final : public ByteSink {
 public:
  explicit LimitedSink(std::uint64_t& left) : left_(left) {}
  bool write(Bytes bytes) noexcept override {
    if (bytes.size() > left_) return false;
    left_ -= bytes.size();
    isEmpty_ = isEmpty_ && bytes.empty();
    return true;
  }
  [[nodiscard]] bool isEmpty() const { return isEmpty_; }

 private:
  std::uint64_t& left_;
  bool isEmpty_ = true;
};

}  // namespace

EntrySearch::EntrySearch(ByteStore& store, std::uint64_t size, std::function<bool()> goesOn)
    : store_(store),
      window_(store, size),
      goesOn_(std::move(goesOn)),
      mayRead_(kFree + kDepth * size),
      piece_(kLargestPiece),
      overlap_(kLargestEntry) {}

void EntrySearch::search(std::uint64_t begin, std::uint64_t end) {
  const std::uint64_t last = window_.size() - std::min<std::uint64_t>(window_.size(), kRecordSize);
  end = std::min(end, last + 1);
  while (begin < end && failures_ < kMostFailures && (!goesOn_ || goesOn_())) {
    end = searchPiece(begin, end);
  }
}

// The end of the piece of the range. Returns where it began.
std::uint64_t EntrySearch::searchPiece(std::uint64_t begin, std::uint64_t end) {
  std::uint64_t from = end - std::min<std::uint64_t>(end - begin, piece_);
  if (piece_ == kSectorSize) from = std::max(begin, (end - 1) / kSectorSize * kSectorSize);
  const std::uint64_t to = std::min(window_.size(), end - 1 + overlap_);
  const auto count = static_cast<std::size_t>(to - from);
  const unsigned char* const bytes = window_.at(from, count);
  if (bytes) {
    for (std::uint64_t at = end; at-- > from;) {
      const auto i = static_cast<std::size_t>(at - from);
      if (count - i >= kRecordSize) consider(at, bytes + i, count - i);
    }
    piece_ = std::min(2 * piece_, kLargestPiece);
    overlap_ = piece_ == kLargestPiece ? kLargestEntry : kSmallOverlap;
    failures_ = 0;
    return from;
  }
  // Less of it, down to the sector alone.
  if (piece_ > kSectorSize || overlap_ > 1) {
    overlap_ = piece_ > kSectorSize ? kSmallOverlap : 1;
    piece_ = kSectorSize;
    return end;
  }
  ++failures_;
  unreadable_.push_back(from);
  return from;
}

// Most places are no entry by the stored size alone. One without a name is a step from one entry to
// the next, but found it is not.
void EntrySearch::consider(std::uint64_t position, const unsigned char* at, std::size_t count) {
  const std::uint64_t rest = window_.size() - position - kRecordSize;
  const EntrySizes sizes = entrySizes(at);
  const std::uint64_t stored = sizes.storedSize;
  if (stored > rest) return;
  const std::size_t nameLength = sizes.nameLength;
  if (nameLength > rest - stored) return;
  const bool isFollowed = knows(position + kRecordSize + nameLength + stored);
  if (nameLength == 0 && !isFollowed) return;
  if (kRecordSize + nameLength > count || !isPlausibleName({at + kRecordSize, nameLength})) return;
  RawEntry entry{.position = position, .name = std::string(nameLength, ' ')};
  entry.record = decodeRecord(std::span<const unsigned char, kRecordSize>(at, kRecordSize));
  if (entry.record == EntryRecord{} || isClosed(entry.record, position)) return;
  if (!isFollowed && !isProven(entry)) return;
  know(position);
  if (nameLength != 0) found_.push_back(position);
}

bool EntrySearch::isProven(const RawEntry& entry) {
  const EntryRecord& record = entry.record;
  const bool isContainer = record.has(kIsCompressed);
  const bool mayHaveCheck = isContainer ? record.storedSize > kTrailerSize
                                        : record.crc != 0 && record.size == record.storedSize;
  if (!mayHaveCheck || record.storedSize == 0 || record.storedSize > mayRead_) return false;
  mayRead_ -= record.storedSize;
  if (isContainer) {
    MemberData data(store_, entry);
    LimitedSink sink(mayRead_);
    return explodeStream(data, sink) == 0 && !sink.isEmpty();
  }
  std::uint32_t crc = kCrcStart;
  PartSource data(store_, entry.dataPosition(), record.storedSize);
  for (Bytes piece; !(piece = data.next()).empty();) crc = crc32Update(crc, piece);
  return ~crc == record.crc;
}

}  // namespace zo
