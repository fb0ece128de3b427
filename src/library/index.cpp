#include "library/index.h"

#include <algorithm>
#include <bit>

#include "library/name_bytes.h"
#include "names/name_compare.h"

namespace zo {

void LibraryIndex::clear() noexcept {
  entries_.shorten(0);
  hashes_.shorten(0);
  names_.shorten(0);
  buckets_.clear();
  searches_ = 0;
  hidden_.clear();
  largestNumber_ = 0;
}

std::string_view LibraryIndex::bytes(const IndexEntry& entry) const {
  return {names_.all().data() + entry.nameBegin, entry.record.nameLength};
}

std::wstring LibraryIndex::name(const IndexEntry& entry) const { return decodeName(bytes(entry)); }

// ---- Buckets ----

std::uint32_t& LibraryIndex::bucket(std::uint32_t hash) const noexcept {
  return buckets_[hash & (buckets_.size() - 1)];
}

void LibraryIndex::link(std::uint32_t number) const noexcept {
  // Newer entries come before older ones.
  std::uint32_t* place = &bucket(hashes_[number - 1]);
  while (*place > number) place = &before_[*place - 1];
  before_[number - 1] = *place;
  *place = number;
}

void LibraryIndex::unlink(std::uint32_t number) noexcept {
  if (buckets_.empty()) return;
  std::uint32_t* place = &bucket(hashes_[number - 1]);
  while (*place != number) place = &before_[*place - 1];
  *place = before_[number - 1];
}

// With room for as many entries as there are buckets.
void LibraryIndex::makeBuckets() const {
  const std::size_t count = std::bit_ceil(std::max<std::size_t>(hashes_.size() + 1, 64));
  before_.resize(count);
  buckets_.assign(count, 0);
  for (std::uint32_t number = 1; number <= hashes_.size(); ++number) link(number);
}

// ---- Entries ----

void LibraryIndex::reserve(std::size_t count) {
  constexpr std::size_t kTypicalName = 24, kMore = 64;
  entries_.reserve(count + kMore);
  hashes_.reserve(count + kMore);
  names_.reserve((count + kMore) * kTypicalName);
}

void LibraryIndex::add(const RawEntry& raw) {
  const std::size_t count = entries_.size();
  const std::uint32_t hash = hashNameBytes(raw.name);
  entries_.reserve(count + 1);
  hashes_.reserve(count + 1);
  names_.reserve(names_.size() + raw.name.size());
  if (count == buckets_.size()) buckets_.clear();  // a search makes more
  hidden_.clear();
  entries_.append(IndexEntry{.position = raw.position,
                             .record = raw.record,
                             .trailer = raw.trailer,
                             .nameBegin = names_.size()});
  entries_[count].record.nameLength = static_cast<std::uint16_t>(raw.name.size());
  names_.append(raw.name);
  hashes_.append(hash);
  if (!buckets_.empty()) link(static_cast<std::uint32_t>(count + 1));
  if (!raw.record.has(kIsCompressed)) largestNumber_ = std::max(largestNumber_, raw.record.number);
}

void LibraryIndex::replace(const RawEntry& raw) {
  const IndexEntry* const found = at(raw.position);
  if (!found) return;
  const auto number = static_cast<std::uint32_t>(ordinal(*found));
  const std::uint32_t hash = hashNameBytes(raw.name);
  names_.reserve(names_.size() + raw.name.size());
  hidden_.clear();
  unlink(number);
  IndexEntry& entry = entries_[number - 1];
  if (bytes(entry) != raw.name) {
    entry.nameBegin = names_.size();
    names_.append(raw.name);
  }
  entry.record = raw.record;
  entry.record.nameLength = static_cast<std::uint16_t>(raw.name.size());
  hashes_[number - 1] = hash;
  if (!buckets_.empty()) link(number);
}

void LibraryIndex::clearFlags(std::uint64_t position, std::uint16_t flags) {
  if (const IndexEntry* const found = at(position)) {
    entries_[static_cast<std::size_t>(ordinal(*found) - 1)].record.clear(flags);
  }
}

void LibraryIndex::removeLast() noexcept {
  const std::size_t last = entries_.size() - 1;
  unlink(static_cast<std::uint32_t>(last + 1));
  entries_.shorten(last);
  hashes_.shorten(last);
  hidden_.clear();
}

// ---- Finding ----

template <class Visitor>
void LibraryIndex::visitHash(std::uint32_t hash, const Visitor& visit) const {
  if (buckets_.empty() && searches_ >= kSearchesWithoutBuckets) makeBuckets();
  if (!buckets_.empty()) {
    for (std::uint32_t number = bucket(hash); number; number = before_[number - 1]) {
      if (hashes_[number - 1] == hash && !visit(entries_[number - 1])) return;
    }
    return;
  }
  ++searches_;
  for (std::size_t i = hashes_.size(); i-- > 0;) {
    if (hashes_[i] == hash && !visit(entries_[i])) return;
  }
}

template <class Visitor>
void LibraryIndex::visitNamed(std::wstring_view wanted, const Visitor& visit) const {
  visitHash(shortHash(wanted), [&](const IndexEntry& entry) {
    return !isNamed(bytes(entry), wanted) || visit(entry);
  });
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
  const auto found = std::ranges::lower_bound(entries(), position, {}, &IndexEntry::position);
  return found != entries().end() && found->position == position ? &*found : nullptr;
}

// ---- Several live ones of a name ----

bool LibraryIndex::isHidden(const IndexEntry& entry) const {
  return entry.record.isLive() && findLive(name(entry)) != &entry;
}

const std::vector<bool>& LibraryIndex::hidden() {
  if (hidden_.size() == entries_.size()) return hidden_;
  constexpr unsigned kHash = 32;  // above the place
  std::vector<std::uint64_t> live;
  live.reserve(entries_.size());
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].record.isLive()) live.push_back(std::uint64_t{hashes_[i]} << kHash | i);
  }
  std::ranges::sort(live);
  std::vector<bool> hidden(entries_.size());
  const auto placeOf = [](std::uint64_t one) { return static_cast<std::uint32_t>(one); };
  const auto nameOf = [&](std::uint64_t one) { return name(entries_[placeOf(one)]); };
  for (auto begin = live.begin(), end = begin; begin != live.end(); begin = end) {
    const auto isOther = [&](std::uint64_t one) { return (one ^ *begin) >> kHash != 0; };
    end = std::find_if(begin + 1, live.end(), isOther);
    if (end - begin == 1) continue;
    std::stable_sort(begin, end, [&](std::uint64_t a, std::uint64_t b) {
      return orderNames(nameOf(a), nameOf(b)) < 0;
    });
    for (auto one = begin + 1; one != end; ++one)
      hidden[placeOf(*one)] = equalNames(nameOf(one[-1]), nameOf(*one));
  }
  hidden_ = std::move(hidden);
  return hidden_;
}

}  // namespace zo
