#include "library/index.h"

#include <algorithm>
#include <bit>

#include "names/name_compare.h"
#include "platform/ansi.h"

namespace zo {

void LibraryIndex::clear() {
  entries_.clear();
  names_.clear();
  buckets_.clear();
  largestNumber_ = 0;
}

// Every ANSI code page has the ASCII characters in their places.
void LibraryIndex::keepName(IndexEntry& entry, std::string_view bytes) {
  entry.nameBegin = names_.size();
  const bool isAscii =
      std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= 0 && c < 0x7F; });
  if (isAscii) {
    names_.append(bytes.begin(), bytes.end());
  } else {
    names_ += fromMultiByte(bytes);
  }
  entry.nameSize = names_.size() - entry.nameBegin;
  entry.hash = hashName(name(entry));
}

std::wstring_view LibraryIndex::name(const IndexEntry& entry) const {
  return std::wstring_view(names_).substr(entry.nameBegin, entry.nameSize);
}

std::size_t& LibraryIndex::bucket(std::size_t hash) noexcept {
  return buckets_[hash & (buckets_.size() - 1)];
}

void LibraryIndex::link(std::size_t number) {
  IndexEntry& entry = entries_[number - 1];
  // Newer entries come before older ones.
  std::size_t* place = &bucket(entry.hash);
  while (*place > number) place = &entries_[*place - 1].before;
  entry.before = *place;
  *place = number;
}

void LibraryIndex::unlink(std::size_t number) noexcept {
  std::size_t* place = &bucket(entries_[number - 1].hash);
  while (*place != number) place = &entries_[*place - 1].before;
  *place = entries_[number - 1].before;
}

void LibraryIndex::makeBuckets(std::size_t count) {
  buckets_.assign(std::bit_ceil(std::max<std::size_t>(count, 64)), 0);
  for (std::size_t number = 1; number <= entries_.size(); ++number) link(number);
}

void LibraryIndex::reserve(std::size_t count) {
  constexpr std::size_t kTypicalName = 24;
  entries_.reserve(count);
  names_.reserve(count * kTypicalName);
  makeBuckets(count);
}

void LibraryIndex::add(const RawEntry& raw) {
  IndexEntry entry{.position = raw.position, .record = raw.record, .trailer = raw.trailer};
  keepName(entry, raw.name);
  if (entries_.size() == buckets_.size()) makeBuckets(2 * (entries_.size() + 1));
  entries_.push_back(entry);
  link(entries_.size());
  if (!raw.record.has(kIsCompressed)) largestNumber_ = std::max(largestNumber_, raw.record.number);
}

void LibraryIndex::replace(const RawEntry& raw) {
  const IndexEntry* const found = at(raw.position);
  if (!found) return;
  const auto number = static_cast<std::size_t>(found - entries_.data()) + 1;
  unlink(number);
  entries_[number - 1].record = raw.record;
  keepName(entries_[number - 1], raw.name);
  link(number);
}

void LibraryIndex::clearFlags(std::uint64_t position, std::uint16_t flags) {
  if (const IndexEntry* const found = at(position)) {
    EntryRecord& record = entries_[static_cast<std::size_t>(found - entries_.data())].record;
    record.flags &= static_cast<std::uint16_t>(~flags);
  }
}

void LibraryIndex::removeLast() noexcept {
  unlink(entries_.size());
  entries_.pop_back();
}

std::size_t LibraryIndex::newest(std::size_t hash) const {
  return buckets_.empty() ? 0 : buckets_[hash & (buckets_.size() - 1)];
}

bool LibraryIndex::isNamed(const IndexEntry& entry, std::wstring_view wanted,
                           std::size_t hash) const {
  return entry.hash == hash && equalNames(name(entry), wanted);
}

template <class Visitor>
void LibraryIndex::visitNamed(std::wstring_view wanted, const Visitor& visit) const {
  const std::size_t hash = hashName(wanted);
  for (std::size_t number = newest(hash); number; number = entries_[number - 1].before) {
    const IndexEntry& entry = entries_[number - 1];
    if (isNamed(entry, wanted, hash) && !visit(entry)) return;
  }
}

std::vector<const IndexEntry*> LibraryIndex::all(std::wstring_view wanted) const {
  std::vector<const IndexEntry*> found;
  visitNamed(wanted, [&](const IndexEntry& entry) {
    found.push_back(&entry);
    return true;
  });
  std::reverse(found.begin(), found.end());
  return found;
}

std::vector<const IndexEntry*> LibraryIndex::allLive(std::wstring_view wanted) const {
  std::vector<const IndexEntry*> found = all(wanted);
  std::erase_if(found, [](const IndexEntry* entry) { return !entry->record.isLive(); });
  return found;
}

const IndexEntry* LibraryIndex::findFirst(std::wstring_view wanted, bool isLive) const {
  const IndexEntry* first = nullptr;
  visitNamed(wanted, [&](const IndexEntry& entry) {
    if (entry.record.isLive() == isLive) first = &entry;
    return true;
  });
  return first;
}

const IndexEntry* LibraryIndex::findLatestDeleted(std::wstring_view wanted) const {
  const IndexEntry* latest = nullptr;
  visitNamed(wanted, [&](const IndexEntry& entry) {
    if (!entry.record.isLive()) latest = &entry;
    return !latest;
  });
  return latest;
}

const IndexEntry* LibraryIndex::nth(std::uint64_t ordinal) const {
  return ordinal - 1 < entries_.size() ? &entries_[static_cast<std::size_t>(ordinal - 1)] : nullptr;
}

const IndexEntry* LibraryIndex::at(std::uint64_t position) const {
  const auto found = std::lower_bound(
      entries_.begin(), entries_.end(), position,
      [](const IndexEntry& entry, std::uint64_t wanted) { return entry.position < wanted; });
  return found != entries_.end() && found->position == position ? &*found : nullptr;
}

}  // namespace zo
