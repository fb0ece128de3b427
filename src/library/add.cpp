// Adding members: their data goes straight into the library's file.
#include <zo/persist/zip.h>

#include <vector>

#include "bytes/crc32.h"
#include "library/change.h"

namespace zo {
namespace {

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

class LibrarySink final : public ByteSink {
 public:
  LibrarySink(LibraryFile& file, std::uint64_t at) : file_(file), begin_(at), at_(at) {}
  bool write(Bytes bytes) noexcept override {
    if (!file_.write(at_, bytes)) return false;
    at_ += bytes.size();
    return true;
  }
  [[nodiscard]] std::uint64_t size() const { return at_ - begin_; }

 private:
  LibraryFile& file_;
  std::uint64_t begin_, at_;
};

// Writes the data of an entry and fills in what follows from it.
class DataWriter {
 public:
  DataWriter(LibraryFile& file, MemberSource& source, Progress& progress, ReusedMemory& memory)
      : file_(file), source_(source), progress_(progress), memory_(memory) {}

  bool compress(RawEntry& entry, int level) {
    WatchedSource source(source_, progress_);
    LibrarySink sink(file_, entry.dataPosition());
    if (compressStream(source, source_.size(), levelOf(static_cast<unsigned>(level)), sink,
                       &memory_)) {
      return false;
    }
    // Any other level is written as what it counts as.
    const bool isKnown = level == ZoLibrary::kFast || level == ZoLibrary::kBest;
    entry.record.mode = static_cast<std::uint16_t>(isKnown ? level : ZoLibrary::kNormal);
    entry.record.flags = kIsCompressed;
    fill(entry, source, sink);
    return true;
  }

  bool store(RawEntry& entry) {
    WatchedSource source(source_, progress_);
    LibrarySink sink(file_, entry.dataPosition());
    for (Bytes piece; !(piece = source.next()).empty();) {
      if (!sink.write(piece)) return false;
    }
    if (source.size() != source_.size()) return false;
    entry.record.mode = 0;
    entry.record.flags = 0;
    fill(entry, source, sink);
    return true;
  }

 private:
  void fill(RawEntry& entry, const WatchedSource& source, const LibrarySink& sink) {
    entry.record.storedSize = sink.size();
    entry.record.size = source.size();
    entry.record.crc = source.crc();
  }

  LibraryFile& file_;
  MemberSource& source_;
  Progress& progress_;
  ReusedMemory& memory_;
};

bool writeData(LibraryFile& file, RawEntry& entry, MemberSource& source, Progress& progress,
               ReusedMemory& memory, ZoLibrary::compMode mode, int level) {
  DataWriter writer(file, source, progress, memory);
  // A container has no room for more.
  const bool mayCompress = mode != ZoLibrary::kStore && source.size() <= kMaxContent;
  if (!mayCompress) return writer.store(entry);
  if (!writer.compress(entry, level)) return false;
  if (mode != ZoLibrary::kAutomatic || entry.record.storedSize < source.size()) return true;
  const std::uint64_t compressedEnd = entry.end();
  if (!source.restart() || !writer.store(entry)) return false;
  // What is left of the compressed form must not become part of the file.
  return file.size() != compressedEnd || entry.end() == compressedEnd || file.cut(entry.end());
}

// A member among the names of a batch: taken out again unless it is kept.
class ListedInBatch {
 public:
  ListedInBatch(LibraryIndex* batched, const RawEntry& entry) : batched_(batched) {
    if (batched_) batched_->add(entry);
  }
  ListedInBatch(const ListedInBatch&) = delete;
  ListedInBatch& operator=(const ListedInBatch&) = delete;
  ~ListedInBatch() {
    if (batched_) batched_->removeLast();
  }
  void keep() noexcept { batched_ = nullptr; }

 private:
  LibraryIndex* batched_;
};

}  // namespace

int LibraryCore::add(MemberSource& source, const ZoFileName& member, const MemberTimes& times,
                     bool replace, ZoLibrary::compMode mode, int level) {
  if (const int code = mayWrite(&member)) return code;
  RawEntry entry;
  if (!encodeName(member, entry.name)) return ZoResult::refused;
  const bool isBatch = batch != nullptr;
  const bool isAgain = isBatch && batched.findLive(member.view());
  if (isAgain && !replace) return ZoResult::memberExists;
  if (isAgain || (isBatch && batch->isFull())) {
    if (const int code = endBatch()) return code;
    if (const int code = beginBatch()) return code;
  }
  Change single(*this);
  Change& change = isBatch ? *batch : single;
  if (!isBatch) {
    if (const int code = change.begin()) return code;
  }
  const std::vector<const IndexEntry*> replaced = index.allLive(member.view());
  if (!replaced.empty() && !replace) return ZoResult::memberExists;
  std::vector<RawEntry> gone(replaced.size());
  for (std::size_t i = 0; i < gone.size(); ++i) {
    if (!load(*replaced[i], gone[i])) return ZoResult::refused;
    gone[i].record.flags |= kIsDeleted;
  }

  Progress watched = progress(source.size());
  entry.position = change.end();
  entry.record.number = change.nextNumber();
  times.storeIn(entry.record);
  entry.record.nameLength = static_cast<std::uint16_t>(entry.name.size());
  if (!watched.begin() || !change.reserve() ||
      !writeData(file, entry, source, watched, change.codecMemory(), mode, level) ||
      !watched.finish()) {
    return ZoResult::refused;
  }
  if (entry.record.has(kIsCompressed)) {
    entry.trailer = {.size = static_cast<std::uint32_t>(entry.record.size),
                     .crc = entry.record.crc};
  }
  // What takes another one's place is hidden until both change in one step.
  RawEntry first = entry;
  if (!gone.empty()) first.record.flags |= kIsDeleted;
  change.makeRoom(gone.size() + 1);
  ListedInBatch listed(isBatch ? &batched : nullptr, entry);
  if (!change.append(std::move(first))) return ZoResult::refused;
  // A batch has it now: nothing throws from here on.
  listed.keep();
  change.countMember();
  for (RawEntry& old : gone) change.patch(std::move(old));
  if (!gone.empty()) change.patch(std::move(entry));
  return isBatch ? ZoResult::ok : change.commit();
}

// ---- Many members in one step ----

int LibraryCore::beginBatch() {
  if (const int code = mayWrite()) return code;
  auto change = std::make_unique<Change>(*this);
  if (const int code = change->begin()) return code;
  batch = std::move(change);
  return ZoResult::ok;
}

int LibraryCore::endBatch() {
  const std::unique_ptr<Change> change = std::move(batch);
  const bool isEmpty = batched.entries().empty();
  batched.clear();
  return change && !isEmpty ? change->commit() : ZoResult::ok;
}

int LibraryCore::cancelBatch() {
  if (const int code = mayWrite()) return code;
  batched.clear();
  batch.reset();
  return ZoResult::ok;
}

}  // namespace zo
