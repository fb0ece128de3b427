#include "library/change.h"

#include <algorithm>

#include "files/replace_file.h"

namespace zo {
namespace {

Bytes part(const std::vector<unsigned char>& bytes, std::size_t begin, std::size_t count) {
  return Bytes(bytes).subspan(begin, count);
}

// Keeps the last error, which says so.
bool isOpenElsewhere(const SystemPath& path) noexcept {
  const KeptError kept;
  const OpenFile alone(fileApi().create(path, GENERIC_READ | DELETE, 0, OPEN_EXISTING, 0));
  return !alone && GetLastError() == ERROR_SHARING_VIOLATION;
}

}  // namespace

int Change::begin() {
  if (const int code = endBatch(library_)) return code;
  if (const int code = settle(library_, Settling::kBeforeChange)) return code;
  begin_ = end_ = library_.scan_.position;
  counter_ = library_.header_.counter();
  if (library_.scan_.end == ScanEnd::kMark) marked_ = library_.scan_.lastEntry;
  isBegun_ = true;
  return ZoResult::ok;
}

bool Change::reserve() {
  if (end_ != begin_) return true;
  return library_.file_.write(begin_, closedRecord(begin_)) && library_.file_.flush();
}

bool Change::shorten(std::uint64_t from, std::uint64_t to) {
  return library_.file_.size() != from || to == from || library_.file_.cut(to);
}

bool Change::append(RawEntry entry) {
  makeRoom(1);
  std::vector<unsigned char> bytes = entry.bytes();
  if (entry.position == begin_) {
    firstEntry_ = bytes;
    closeGate(gateOf(begin_), bytes);
  }
  if (!library_.file_.write(entry.position, bytes)) return false;
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

bool Change::tryPatch(RawEntry entry) {
  makeRoom(1);
  patch(std::move(entry));
  return fits();
}

bool Change::fits() {
  if (patchBytes_ <= kLargestRedo - kRedoTail) return true;
  SetLastError(ERROR_NOT_SUPPORTED);
  return reportFailure(L"write");
}

// A stored member of another maker may hold by chance a number that this change gives out. It is
// taken from it: with a number that is given out, its other hints would count as this library's,
// and what could be read so far would count as damaged.
bool Change::disownNumbers() {
  const std::uint32_t before = library_.header_.counter();
  if (library_.index_.largestNumber() <= before) return true;
  for (const IndexEntry& found : library_.index_.entries()) {
    const EntryRecord& record = found.record;
    if (record.has(kIsCompressed) || record.number <= before || record.number > counter_) continue;
    const auto patched =
        std::ranges::find(patches_, found.position, [](const RawEntry& p) { return p.position; });
    if (patched != patches_.end()) {
      patched->record.number = 0;
      continue;
    }
    RawEntry entry;
    if (!library_.load(found, entry)) return false;
    entry.record.number = 0;
    makeRoom(1);
    patch(std::move(entry));
  }
  return true;
}

bool Change::appendRedo() {
  if (patches_.empty()) return true;
  for (RawEntry& entry : patches_) {
    if (entry.position == marked_) entry.record.clear(kEndsScan);
  }
  if (!fits()) return false;
  const std::vector<unsigned char> data = encodeRedo(patches_);
  RawEntry redo{.position = end_, .record = {}, .name = std::string(kRedoName)};
  redo.record.storedSize = redo.record.size = data.size();
  redo.record.flags = kIsDeleted | kIsRedo;
  redo.record.nameLength = static_cast<std::uint16_t>(redo.name.size());
  redoPosition_ = redo.position;
  return reserve() && library_.file_.write(redo.dataPosition(), data) && append(std::move(redo));
}

bool Change::writeHeader() {
  if (counter_ == library_.header_.counter()) return true;
  LibraryHeader header = library_.header_;
  header.setCounter(counter_);
  isHeaderWritten_ = true;
  return library_.file_.write(0, header.bytes());
}

// With the gate behind it closed, a scan ends at the same place with the mark and without it.
bool Change::clearMark() {
  if (!marked_) return true;
  isMarkTouched_ = true;
  const unsigned char byte = clearedMarkByte(library_.scan_.lastFlags);
  return library_.file_.write(marked_ + kMarkAt, {&byte, 1}) && library_.file_.flush();
}

bool Change::openGate() {
  isGateTouched_ = true;
  const Gate gate = gateOf(begin_);
  return library_.file_.write(begin_ + gate.offset, part(firstEntry_, gate.offset, gate.size));
}

// A change of bytes within one sector needs no more than to be written.
Change::InPlace Change::patchInPlace() {
  if (!appended_.empty() || patches_.size() != 1) return InPlace::kNotPossible;
  DiskFile& file = library_.file_;
  const RawEntry& entry = patches_.front();
  const std::vector<unsigned char> after = entry.bytes();
  std::vector<unsigned char> before(after.size());
  if (!file.read(entry.position, before)) return InPlace::kFailed;
  const auto first = std::mismatch(after.begin(), after.end(), before.begin()).first;
  const auto last = std::mismatch(after.rbegin(), after.rend(), before.rbegin()).first.base();
  if (first >= last) return InPlace::kDone;
  const auto begin = static_cast<std::size_t>(first - after.begin());
  const auto count = static_cast<std::size_t>(last - first);
  const std::uint64_t at = entry.position + begin;
  if (!inOneSector(at, at + count)) return InPlace::kNotPossible;
  if (file.write(at, part(after, begin, count)) && file.flush()) return InPlace::kDone;
  library_.isIndexed_ = false;
  static_cast<void>(file.write(at, part(before, begin, count)) && file.flush());
  return InPlace::kFailed;
}

// From the last flush on the change is made, and not before.
bool Change::publish() {
  DiskFile& file = library_.file_;
  if (!disownNumbers()) return false;
  // What a member left behind that was begun and not added.
  if (file.size() > end_ && !file.cut(end_)) return false;
  if (!appendRedo() || !writeHeader() || !file.flush()) return false;
  return clearMark() && openGate() && file.flush();
}

int Change::commit() {
  const InPlace inPlace = patchInPlace();
  if (inPlace == InPlace::kFailed) return ZoResult::refused;
  if (inPlace == InPlace::kNotPossible && !publish()) return ZoResult::refused;
  isCommitted_ = true;
  keepIndex();
  // The change is made, whatever fails from here on: the next writer finishes it.
  if (redoPosition_) settleQuietly(library_, Settling::kBeforeChange);
  return ZoResult::ok;
}

// The change is made: without memory for it, the index is made anew from the file when it is
// needed.
void Change::keepIndex() noexcept {
  library_.isIndexed_ = false;
  library_.header_.setCounter(counter_);
  bool isKept = true;
  try {
    updateIndex();
  } catch (const std::bad_alloc&) {
    isKept = false;
  }
  library_.file_.touch();
  library_.isIndexed_ = isKept && library_.file_.look(library_.indexed_);
}

void Change::updateIndex() {
  if (marked_ && !appended_.empty()) {
    library_.index_.clearFlags(marked_, kEndsScan);
  }
  for (const RawEntry& entry : appended_) {
    if (entry.position != redoPosition_) library_.index_.add(entry);
  }
  for (const RawEntry& entry : patches_) library_.index_.replace(entry);
  ScanResult& scan = library_.scan_;
  if (!appended_.empty()) {
    const RawEntry& last = appended_.back();
    scan.end = ScanEnd::kFileEnd;
    scan.position = end_;
    scan.lastEntry = last.position;
    scan.lastFlags = last.record.flags;
  }
  if (redoPosition_) scan.takeRedo(patches_, redoPosition_);
}

void Change::takeBack() noexcept {
  const KeptError kept;
  DiskFile& file = library_.file_;
  library_.isIndexed_ = false;
  if (file.size() > begin_ && !file.cut(begin_) && isGateTouched_) {
    const Gate gate = gateOf(begin_);
    closeGate(gate, firstEntry_);
    static_cast<void>(file.write(begin_ + gate.offset, part(firstEntry_, gate.offset, gate.size)));
  }
  const unsigned char mark = markByte(library_.scan_.lastFlags);
  if (isMarkTouched_) static_cast<void>(file.write(marked_ + kMarkAt, {&mark, 1}));
  if (isHeaderWritten_) static_cast<void>(file.write(0, library_.header_.bytes()));
  static_cast<void>(file.flush());
  file.touch();
}

Change::~Change() {
  const bool wrote = library_.file_.size() > begin_ || !appended_.empty() || isGateTouched_;
  if (isBegun_ && !isCommitted_ && wrote) takeBack();
}

int endBatch(LibraryState& library) {
  const std::unique_ptr<Batch> ended = std::move(library.batch);
  return ended && !ended->members.entries().empty() ? ended->change.commit() : ZoResult::ok;
}

// ---- Changes of another kind ----

int Change::setValue(std::uint64_t value) {
  DiskFile& file = library_.file_;
  LibraryHeader changed = library_.header_;
  changed.setValue(value);
  // One write within the first sector.
  if (!file.write(0, changed.bytes()) || !file.flush()) {
    library_.isIndexed_ = false;
    static_cast<void>(file.write(0, library_.header_.bytes()) && file.flush());
    return ZoResult::refused;
  }
  isCommitted_ = true;
  library_.header_ = changed;
  file.touch();
  library_.isIndexed_ = file.look(library_.indexed_);
  return ZoResult::ok;
}

int Change::cutTo(std::uint64_t size) {
  DiskFile& file = library_.file_;
  if (size == file.size()) return ZoResult::ok;
  library_.isIndexed_ = false;
  if (!file.cut(size)) return ZoResult::refused;
  // It is done and cannot be taken back: a flush that fails leaves it to the platform when.
  isCommitted_ = true;
  static_cast<void>(file.flush());
  file.touch();
  return ZoResult::ok;
}

// The platform replaces no file that is open. The mutex keeps other writers out meanwhile, and the
// new file is locked already. Nothing throws until the library has a file again.
int Change::replaceBy(DiskFile copy, FreshFile& place, const SystemPath& library) {
  DiskFile& file = library_.file_;
  library_.isIndexed_ = false;
  static_cast<void>(file.close());
  isCommitted_ = true;  // nothing is to be taken back from either file
  if (putInPlace(place, library, false)) {
    countLibraryChange();
    file = std::move(copy);
    return ZoResult::ok;
  }
  const bool isInUse = isOpenElsewhere(library);
  reportFailure(L"reorganize");
  if (!reopen(library)) return ZoResult::refused;
  return isInUse ? ZoResult::libraryInUse : ZoResult::refused;
}

// The platform tells only who has no file open there himself. The mutex keeps other writers out.
int Change::askWhetherInUse(const SystemPath& library, bool& isInUse) {
  static_cast<void>(library_.file_.close());
  isInUse = isOpenElsewhere(library);
  const KeptError kept;
  return reopen(library) ? ZoResult::ok : ZoResult::refused;
}

// Who copies the file may lock writers out for a while.
bool Change::reopen(const SystemPath& library) noexcept {
  constexpr int kAttempts = 50;
  constexpr DWORD kPause = 20;  // ms
  DiskFile& file = library_.file_;
  for (int attempt = 1; !file.openToWrite(library, OPEN_EXISTING); ++attempt) {
    if (GetLastError() != ERROR_SHARING_VIOLATION || attempt == kAttempts) {
      reportFailure(L"open");
      library_.release();
      return false;
    }
    Sleep(kPause);
  }
  DiskFile::Signature now;
  if (file.lock() && file.look(now)) return true;
  library_.release();
  return false;
}

}  // namespace zo
