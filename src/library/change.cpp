#include "library/change.h"

#include <algorithm>

namespace zo {
namespace {

constexpr std::uint64_t kFlagsAt = 50;

Bytes part(const std::vector<unsigned char>& bytes, std::size_t begin, std::size_t count) {
  return Bytes(bytes).subspan(begin, count);
}

}  // namespace

bool copyData(LibraryFile& file, const RawEntry& from, LibraryFile& target, std::uint64_t to,
              Progress& progress) {
  std::vector<unsigned char> buffer(static_cast<std::size_t>(
      std::min<std::uint64_t>(from.record.storedSize, LibraryCore::kPiece)));
  for (std::uint64_t done = 0; done < from.record.storedSize;) {
    const auto count = static_cast<std::size_t>(
        std::min<std::uint64_t>(buffer.size(), from.record.storedSize - done));
    const std::span<unsigned char> piece(buffer.data(), count);
    if (!file.read(from.dataPosition() + done, piece) || !target.write(to + done, piece)) {
      return false;
    }
    done += count;
    if (!progress.add(count)) return false;
  }
  return true;
}

int Change::begin() {
  if (const int code = core_.settle()) return code;
  begin_ = end_ = core_.scan.position;
  counter_ = core_.header.counter();
  if (core_.scan.end == ScanEnd::kMark) marked_ = core_.scan.lastEntry;
  isBegun_ = true;
  return ZoResult::ok;
}

bool Change::reserve() {
  if (end_ != begin_) return true;
  return core_.file.write(begin_, closedRecord(begin_)) && core_.file.flush();
}

bool Change::append(RawEntry entry) {
  makeRoom(1);
  std::vector<unsigned char> bytes = entry.bytes();
  if (entry.position == begin_) {
    firstEntry_ = bytes;
    closeGate(gateOf(begin_), bytes);
  }
  if (!core_.file.write(entry.position, bytes)) return false;
  end_ = entry.end();
  appended_.push_back(std::move(entry));
  return true;
}

void Change::makeRoom(std::size_t count) {
  for (std::vector<RawEntry>* entries : {&appended_, &patches_}) {
    const std::size_t needed = entries->size() + count;
    if (needed > entries->capacity()) entries->reserve(std::max(needed, 2 * entries->size()));
  }
}

void Change::patch(RawEntry entry) {
  patchBytes_ += kPatchHead + kRecordSize + entry.name.size();
  patches_.push_back(std::move(entry));
}

// A stored member of another maker may hold by chance a number that this change gives out. It is
// taken from it: with a number that is given out, its other hints would count as this library's,
// and what could be read so far would count as damaged.
bool Change::disownNumbers() {
  const std::uint32_t before = core_.header.counter();
  if (core_.index.largestNumber() <= before) return true;
  for (const IndexEntry& found : core_.index.entries()) {
    const EntryRecord& record = found.record;
    if (record.has(kIsCompressed) || record.number <= before || record.number > counter_) continue;
    const auto patched =
        std::ranges::find(patches_, found.position, [](const RawEntry& p) { return p.position; });
    if (patched != patches_.end()) {
      patched->record.number = 0;
      continue;
    }
    RawEntry entry;
    if (!core_.load(found, entry)) return false;
    entry.record.number = 0;
    makeRoom(1);
    patch(std::move(entry));
  }
  return true;
}

bool Change::appendRedo() {
  if (patches_.empty()) return true;
  for (RawEntry& entry : patches_) {
    if (entry.position == marked_) entry.record.flags &= static_cast<std::uint16_t>(~kEndsScan);
  }
  if (patchBytes_ > kLargestRedo - kRedoTail) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return reportFailure(L"write");
  }
  const std::vector<unsigned char> data = encodeRedo(patches_);
  RawEntry redo{.position = end_, .record = {}, .name = std::string(kRedoName)};
  redo.record.storedSize = redo.record.size = data.size();
  redo.record.flags = kIsDeleted | kIsRedo;
  redo.record.nameLength = static_cast<std::uint16_t>(redo.name.size());
  redoPosition_ = redo.position;
  return reserve() && core_.file.write(redo.dataPosition(), data) && append(std::move(redo));
}

bool Change::writeHeader() {
  if (counter_ == core_.header.counter()) return true;
  LibraryHeader header = core_.header;
  header.setCounter(counter_);
  isHeaderWritten_ = true;
  return core_.file.write(0, header.bytes());
}

// With the gate behind it closed, a scan ends at the same place with the mark and without it.
bool Change::clearMark() {
  if (!marked_) return true;
  isMarkTouched_ = true;
  const auto flags = static_cast<unsigned char>(core_.scan.lastFlags & 0x7F);
  return core_.file.write(marked_ + kFlagsAt, {&flags, 1}) && core_.file.flush();
}

bool Change::openGate() {
  isGateTouched_ = true;
  const Gate gate = gateOf(begin_);
  return core_.file.write(begin_ + gate.offset, part(firstEntry_, gate.offset, gate.size));
}

// A change of bytes within one sector needs no more than to be written.
int Change::patchInPlace() {
  const RawEntry& entry = patches_.front();
  const std::vector<unsigned char> after = entry.bytes();
  std::vector<unsigned char> before(after.size());
  if (!core_.file.read(entry.position, before)) return ZoResult::refused;
  const auto first = std::mismatch(after.begin(), after.end(), before.begin()).first;
  const auto last = std::mismatch(after.rbegin(), after.rend(), before.rbegin()).first.base();
  if (first >= last) return ZoResult::ok;
  const auto begin = static_cast<std::size_t>(first - after.begin());
  const auto count = static_cast<std::size_t>(last - first);
  const std::uint64_t at = entry.position + begin;
  if (!inOneSector(at, at + count)) return -1;
  if (core_.file.write(at, part(after, begin, count)) && core_.file.flush()) return ZoResult::ok;
  core_.isIndexed = false;
  static_cast<void>(core_.file.write(at, part(before, begin, count)) && core_.file.flush());
  return ZoResult::refused;
}

int Change::commit() {
  if (appended_.empty() && patches_.size() == 1) {
    const int code = patchInPlace();
    if (code == ZoResult::refused) return code;
    if (code == ZoResult::ok) {
      isCommitted_ = true;
      keepIndex();
      return code;
    }
  }
  LibraryFile& file = core_.file;
  if (!disownNumbers()) return ZoResult::refused;
  // What a member left behind that was begun and not added.
  if (file.size() > end_ && !file.cut(end_)) return ZoResult::refused;
  if (!appendRedo() || !writeHeader() || !file.flush()) return ZoResult::refused;
  if (!clearMark() || !openGate() || !file.flush()) return ZoResult::refused;
  isCommitted_ = true;
  keepIndex();
  // The change is made, whatever fails from here on: the next writer finishes it.
  if (redoPosition_) core_.settleIfPossible();
  return ZoResult::ok;
}

// The change is made: without memory for it, the index is made anew from the file when it is
// needed.
void Change::keepIndex() noexcept {
  core_.isIndexed = false;
  core_.header.setCounter(counter_);
  bool isKept = true;
  try {
    updateIndex();
  } catch (const std::bad_alloc&) {
    isKept = false;
  }
  core_.file.touch();
  core_.isIndexed = isKept && core_.file.look(core_.indexed);
}

void Change::updateIndex() {
  if (marked_ && !appended_.empty()) {
    core_.index.clearFlags(marked_, kEndsScan);
  }
  for (const RawEntry& entry : appended_) {
    if (entry.position != redoPosition_) core_.index.add(entry);
  }
  for (const RawEntry& entry : patches_) core_.index.replace(entry);
  ScanResult& scan = core_.scan;
  if (!appended_.empty()) {
    const RawEntry& last = appended_.back();
    scan.end = ScanEnd::kFileEnd;
    scan.position = end_;
    scan.lastEntry = last.position;
    scan.lastFlags = last.record.flags;
  }
  scan.redoPosition = redoPosition_;
  if (redoPosition_) scan.redo = patches_;
}

void Change::takeBack() noexcept {
  const KeptError kept;
  LibraryFile& file = core_.file;
  core_.isIndexed = false;
  if (file.size() > begin_ && !file.cut(begin_) && isGateTouched_) {
    const Gate gate = gateOf(begin_);
    closeGate(gate, firstEntry_);
    static_cast<void>(file.write(begin_ + gate.offset, part(firstEntry_, gate.offset, gate.size)));
  }
  const auto flags = static_cast<unsigned char>(core_.scan.lastFlags & 0xFF);
  if (isMarkTouched_) static_cast<void>(file.write(marked_ + kFlagsAt, {&flags, 1}));
  if (isHeaderWritten_) static_cast<void>(file.write(0, core_.header.bytes()));
  static_cast<void>(file.flush());
  file.touch();
}

Change::~Change() {
  const bool wrote = core_.file.size() > begin_ || !appended_.empty() || isGateTouched_;
  if (isBegun_ && !isCommitted_ && wrote) takeBack();
}

}  // namespace zo
