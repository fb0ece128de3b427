// Adding members: their data goes straight into the library's file.
#include <algorithm>

#include "library/operations.h"
#include "platform/time_value.h"

namespace zo {
namespace {

// The room behind a new entry.
class EntryData final : public PackTarget {
 public:
  EntryData(Change& change, const RawEntry& entry)
      : change_(change), begin_(entry.dataPosition()), sink_(change.dataOf(entry)) {}

  bool write(Bytes bytes) noexcept override { return sink_.write(bytes); }
  [[nodiscard]] std::uint64_t size() const override { return sink_.size(); }
  [[nodiscard]] bool restart() noexcept override {
    longest_ = std::max(longest_, size());
    sink_.restart();
    return true;
  }
  // What is left of a longer form must not become part of the file.
  [[nodiscard]] bool finish() {
    return longest_ <= size() || change_.shorten(begin_ + longest_, begin_ + size());
  }

 private:
  Change& change_;
  std::uint64_t begin_;
  DiskSink sink_;
  std::uint64_t longest_ = 0;
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
int addTo(Change& change, LibraryState& library, RawEntry entry, NewContent& content,
          const NewMember& member) {
  std::vector<RawEntry> gone;
  if (const int code = loadReplaced(library, member, gone)) return code;
  Progress watched = library.progress(content.size());
  entry.position = change.end();
  entry.record.number = change.nextNumber();
  member.times.storeIn(entry.record);
  entry.record.nameLength = static_cast<std::uint16_t>(entry.name.size());
  EntryData data(change, entry);
  if (!watched.begin() || !change.reserve() ||
      !content.writeTo(data, watched, change.codecMemory(), entry) || !data.finish() ||
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

int addToBatch(LibraryState& library, RawEntry entry, NewContent& content,
               const NewMember& member) {
  const bool isAgain = library.batch->members.findLive(member.name.view()) != nullptr;
  if (isAgain && !member.replaces) return ZoResult::memberExists;
  if (isAgain || library.batch->change.isFull()) {
    if (const int code = beginBatch(library)) return code;
  }
  return addTo(library.batch->change, library, std::move(entry), content, member);
}

}  // namespace

bool timesOf(ZoFile& file, MemberTimes& times) {
  if (file.handle() != INVALID_HANDLE_VALUE) {
    return fileApi().times(file.handle(), &times.created, &times.accessed, &times.written) ||
           reportFailure(L"times");
  }
  times = {.created = file.creationTime(),
           .accessed = file.lastAccessTime(),
           .written = file.lastWriteTime()};
  return true;
}

bool PackedOnTheWay::writeTo(PackTarget& target, Progress& progress, ReusedMemory& memory,
                             RawEntry& entry) {
  return packMember(source_, mode_, level_, target, progress, memory, entry);
}

void MemberTimes::storeIn(EntryRecord& record) const noexcept {
  record.created = timeValue(created);
  record.accessed = timeValue(accessed);
  record.written = timeValue(written);
}

int addMember(LibraryState& library, NewContent& content, const NewMember& member) {
  RawEntry entry;
  if (!encodeName(member.name, entry.name)) return ZoResult::refused;
  if (library.batch) return addToBatch(library, std::move(entry), content, member);
  Change change(library);
  if (const int code = change.begin()) return code;
  if (const int code = addTo(change, library, std::move(entry), content, member)) return code;
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
