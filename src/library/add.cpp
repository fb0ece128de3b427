// Adding members: their data goes straight into the library's file.
#include <zo/persist/zip.h>

#include "library/copy.h"
#include "library/operations.h"
#include "library/time_value.h"
#include "platform/ansi.h"

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

// Writes the data of an entry and fills in what follows from it.
class DataWriter {
 public:
  DataWriter(Change& change, MemberSource& source, Progress& progress)
      : change_(change), source_(source), progress_(progress) {}

  bool write(RawEntry& entry, ZoLibrary::compMode mode, int level) {
    // A container has no room for more.
    const bool mayCompress = mode != ZoLibrary::kStore && source_.size() <= kMaxContent;
    if (!mayCompress) return store(entry);
    if (!compress(entry, level)) return false;
    if (mode != ZoLibrary::kAutomatic || entry.record.storedSize < source_.size()) return true;
    const std::uint64_t compressedEnd = entry.end();
    // What is left of the compressed form must not become part of the file.
    return source_.restart() && store(entry) && change_.shorten(compressedEnd, entry.end());
  }

 private:
  bool compress(RawEntry& entry, int level) {
    WatchedSource source(source_, progress_);
    DiskSink sink = change_.dataOf(entry);
    if (compressStream(source, source_.size(), levelOf(static_cast<unsigned>(level)), sink,
                       &change_.codecMemory())) {
      return false;
    }
    // Any other level is written as what it counts as.
    const bool isKnown = level == ZoLibrary::kFast || level == ZoLibrary::kBest;
    entry.record.mode = static_cast<std::uint16_t>(isKnown ? level : ZoLibrary::kNormal);
    entry.record.flags = kIsCompressed;
    fill(entry, source, sink);
    entry.trailer = {.size = static_cast<std::uint32_t>(source.size()), .crc = source.crc()};
    return true;
  }

  bool store(RawEntry& entry) {
    WatchedSource source(source_, progress_);
    DiskSink sink = change_.dataOf(entry);
    if (!copyAll(source, sink) || source.size() != source_.size()) return false;
    entry.record.mode = kStoredMode;
    entry.record.flags = 0;
    fill(entry, source, sink);
    entry.trailer = {};
    return true;
  }

  static void fill(RawEntry& entry, const WatchedSource& source, const DiskSink& sink) {
    entry.record.storedSize = sink.size();
    entry.record.size = source.size();
    entry.record.crc = source.crc();
  }

  Change& change_;
  MemberSource& source_;
  Progress& progress_;
};

// A member among the names of a batch: taken out again unless it is kept.
class ListedInBatch {
 public:
  ListedInBatch(Batch* batch, const RawEntry& entry) : batched_(batch ? &batch->members : nullptr) {
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

// The live members whose place a new one takes, as deleted ones.
int loadReplaced(LibraryState& library, const NewMember& member, std::vector<RawEntry>& gone) {
  const std::vector<const IndexEntry*> replaced = library.index().allLive(member.name.view());
  if (!replaced.empty() && !member.replaces) return ZoResult::memberExists;
  gone.resize(replaced.size());
  for (std::size_t i = 0; i < gone.size(); ++i) {
    if (!library.load(*replaced[i], gone[i])) return ZoResult::refused;
    gone[i].record.set(kIsDeleted);
  }
  return ZoResult::ok;
}

// Puts a member and what it replaces into a change that has begun. A failure leaves the change as
// it was.
int addTo(Change& change, LibraryState& library, RawEntry entry, MemberSource& source,
          const NewMember& member) {
  std::vector<RawEntry> gone;
  if (const int code = loadReplaced(library, member, gone)) return code;
  Progress watched = library.progress(source.size());
  entry.position = change.end();
  entry.record.number = change.nextNumber();
  member.times.storeIn(entry.record);
  entry.record.nameLength = static_cast<std::uint16_t>(entry.name.size());
  if (!watched.begin() || !change.reserve() ||
      !DataWriter(change, source, watched).write(entry, member.mode, member.level) ||
      !watched.finish()) {
    return ZoResult::refused;
  }
  // What takes another one's place is hidden until both change in one step.
  RawEntry first = entry;
  if (!gone.empty()) first.record.set(kIsDeleted);
  change.makeRoom(gone.size() + 1);
  ListedInBatch listed(library.batch.get(), entry);
  if (!change.append(std::move(first))) return ZoResult::refused;
  // A batch has it now: nothing throws from here on.
  listed.keep();
  change.countMember();
  for (RawEntry& old : gone) change.patch(std::move(old));
  if (!gone.empty()) change.patch(std::move(entry));
  return ZoResult::ok;
}

int addToBatch(LibraryState& library, RawEntry entry, MemberSource& source,
               const NewMember& member) {
  const bool isAgain = library.batch->members.findLive(member.name.view()) != nullptr;
  if (isAgain && !member.replaces) return ZoResult::memberExists;
  if (isAgain || library.batch->change.isFull()) {
    if (const int code = beginBatch(library)) return code;
  }
  return addTo(library.batch->change, library, std::move(entry), source, member);
}

}  // namespace

bool encodeName(const ZoFileName& name, std::string& bytes) {
  const std::wstring_view text = name.view();
  bytes = toMultiByte(text);
  return !bytes.empty() && bytes.size() <= kLargestName && fromMultiByte(bytes) == text;
}

void MemberTimes::storeIn(EntryRecord& record) const noexcept {
  record.created = timeValue(created);
  record.accessed = timeValue(accessed);
  record.written = timeValue(written);
}

int addMember(LibraryState& library, MemberSource& source, const NewMember& member) {
  RawEntry entry;
  if (!encodeName(member.name, entry.name)) return ZoResult::refused;
  if (library.batch) return addToBatch(library, std::move(entry), source, member);
  Change change(library);
  if (const int code = change.begin()) return code;
  if (const int code = addTo(change, library, std::move(entry), source, member)) return code;
  return change.commit();
}

// The one before is committed first.
int beginBatch(LibraryState& library) {
  auto batch = std::make_unique<Batch>(library);
  if (const int code = batch->change.begin()) return code;
  library.batch = std::move(batch);
  return ZoResult::ok;
}

}  // namespace zo
