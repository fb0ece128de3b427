#include "library/state.h"

#include <algorithm>

#include "library/change.h"

namespace zo {

namespace {

constexpr int kPatience = 200;

bool isHalfSeen(ScanEnd end) {
  return end == ScanEnd::kShort || end == ScanEnd::kNoEntry || end == ScanEnd::kZero;
}

}  // namespace

LibraryState::LibraryState() = default;
LibraryState::~LibraryState() { batch.reset(); }  // it takes back what it wrote

MemberPlace::MemberPlace(LibraryState& library) : library_(library) {
  const FilesLock lock;
  library.places.push_back(this);
}
MemberPlace::~MemberPlace() {
  const FilesLock lock;
  std::erase(library_.places, this);
}

bool LibraryState::release() noexcept {
  const bool closed = file_.close();
  lock_.release();
  isWritable_ = false;
  isIndexed_ = false;
  firstFind.reset();
  index_.clear();
  scan_ = {};
  name_ = ZoFileName();
  for (MemberPlace* const place : places) place->isGone = true;
  return closed;
}

bool LibraryState::load(const IndexEntry& from, RawEntry& entry) {
  std::vector<unsigned char> bytes(kRecordSize + from.record.nameLength);
  if (!file_.read(from.position, bytes)) return false;
  entry.position = from.position;
  entry.record = decodeRecord(std::span(bytes).first<kRecordSize>());
  entry.name.assign(bytes.begin() + kRecordSize, bytes.end());
  // A redo that is not finished has the last word.
  if (const RawEntry* const redone = scan_.redone(from.position)) {
    entry.record = redone->record;
    entry.name = redone->name;
  }
  entry.trailer = from.trailer;
  entry.ordinal = index_.ordinal(from);
  return true;
}

int LibraryState::refresh() {
  // Another process may change the file while it is read: the index counts when it was built of a
  // file that stayed the same. One that changes all the time is taken as it was seen.
  DiskFile::Signature now;
  if (batch && isIndexed_) return ZoResult::ok;  // what changes the file is not yet visible
  if (!file_.look(now)) return ZoResult::refused;
  int code = ZoResult::ok;
  int attempts = kAttempts;
  for (int attempt = 0; !isIndexOf(now) && attempt < attempts; ++attempt) {
    // An end that a writer at work leaves at no instant was seen before and after it moved on.
    if (attempt >= kAttempts) Sleep(1);
    code = buildIndex();
    indexed_ = now;
    isIndexed_ = code == ZoResult::ok;
    if (isWritable_) break;
    if (!file_.look(now)) return ZoResult::refused;
    if (code && indexed_ == now) break;
    attempts = isHalfSeen(scan_.end) ? kPatience : kAttempts;
  }
  return code;
}

int LibraryState::readHeader() {
  isIndexed_ = false;
  header_ = {};
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(file_.size(), kHeaderSize));
  return file_.read(0, header_.room().first(size)) ? ZoResult::ok : ZoResult::refused;
}

int LibraryState::refreshHeader() {
  DiskFile::Signature now;
  if (batch && isIndexed_) return ZoResult::ok;
  if (!file_.look(now)) return ZoResult::refused;
  return isIndexOf(now) ? ZoResult::ok : readHeader();
}

int LibraryState::buildIndex() {
  const std::uint64_t size = file_.size();
  index_.clear();
  if (const int code = readHeader()) return code;
  // No more than the file can hold, whatever it says.
  index_.reserve(static_cast<std::size_t>(
      std::min<std::uint64_t>(header_.counter(), size / (kRecordSize + 1))));
  scan_ = scanEntries(file_, size, [this](const RawEntry& entry) {
    index_.add(entry);
    return true;
  });
  for (const RawEntry& entry : scan_.redo) index_.replace(entry);
  // What could be read is kept for salvage only: to anyone else the rest would be missing.
  return scan_.end == ScanEnd::kUnreadable ? ZoResult::refused : ZoResult::ok;
}

}  // namespace zo
