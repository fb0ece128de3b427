// What a library holds, in memory: its entries in the order of the file, found by name.
//
// Threads: one at a time.
// Memory:  some 100 bytes and the name for each entry: there may be a million of them. It grows in
//          place.
// Cost:    finding a name is O(1) and the number of entries of that name. The first searches go
//          over the hashes instead: a few of them take less than sorting all entries into buckets.
//          A place is found by bisection.
#pragma once

#include "library/scan.h"
#include "platform/growing_array.h"

namespace zo {

struct IndexEntry {
  std::uint64_t position = 0;
  EntryRecord record;
  ContentTrailer trailer;
  std::size_t nameBegin = 0;  // among the names

  [[nodiscard]] std::uint64_t dataPosition() const {
    return position + kRecordSize + record.nameLength;
  }
  [[nodiscard]] std::uint64_t end() const { return dataPosition() + record.storedSize; }
};

class LibraryIndex {
 public:
  void clear() noexcept;
  // Makes room for so many.
  void reserve(std::size_t count);
  // Entries come in the order of the file. One that cannot be added leaves all as it was.
  void add(const RawEntry& raw);
  // A new record and name for the entry at that position.
  void replace(const RawEntry& raw);
  void clearFlags(std::uint64_t position, std::uint16_t flags);
  void removeLast() noexcept;

  [[nodiscard]] std::span<const IndexEntry> entries() const noexcept { return entries_.all(); }
  [[nodiscard]] std::wstring name(const IndexEntry& entry) const;
  [[nodiscard]] std::string_view bytes(const IndexEntry& entry) const;  // of the name, as stored
  // The first of them; null for none.
  [[nodiscard]] const IndexEntry* findLive(std::wstring_view wanted) const {
    return findFirst(wanted, true);
  }
  [[nodiscard]] const IndexEntry* findDeleted(std::wstring_view wanted) const {
    return findFirst(wanted, false);
  }
  [[nodiscard]] const IndexEntry* findLatestDeleted(std::wstring_view wanted) const;
  // In the order of the file.
  [[nodiscard]] std::vector<const IndexEntry*> allLive(std::wstring_view wanted) const;
  [[nodiscard]] std::vector<const IndexEntry*> all(std::wstring_view wanted) const;
  [[nodiscard]] const IndexEntry* at(std::uint64_t position) const;
  // Which of them it is, from 1; null for none.
  [[nodiscard]] const IndexEntry* nth(std::uint64_t ordinal) const;
  [[nodiscard]] std::uint64_t ordinal(const IndexEntry& entry) const {
    return static_cast<std::uint64_t>(&entry - entries().data()) + 1;
  }
  // Whether it is live and another live one of its name comes first.
  [[nodiscard]] bool isHidden(const IndexEntry& entry) const;
  // The same of all entries at once, kept until one changes. No choice of names makes it slower
  // than sorting them.
  [[nodiscard]] const std::vector<bool>& hidden();
  // No stored member has a larger one.
  [[nodiscard]] std::uint32_t largestNumber() const { return largestNumber_; }

 private:
  static constexpr unsigned kSearchesWithoutBuckets = 16;

  // From the newest to the oldest of a name, until the visitor returns false.
  template <class Visitor>
  void visitNamed(std::wstring_view wanted, const Visitor& visit) const;
  [[nodiscard]] const IndexEntry* findFirst(std::wstring_view wanted, bool isLive) const;
  template <class Visitor>
  void visitHash(std::uint32_t hash, const Visitor& visit) const;
  [[nodiscard]] std::uint32_t& bucket(std::uint32_t hash) const noexcept;
  void link(std::uint32_t number) const noexcept;
  void unlink(std::uint32_t number) noexcept;
  void makeBuckets() const;

  GrowingArray<IndexEntry> entries_;
  GrowingArray<std::uint32_t> hashes_;  // of each one's name
  GrowingArray<char> names_;            // as the file has them
  std::uint32_t largestNumber_ = 0;
  // Made by a search. The newest entry of each bucket, and of each entry the next older one in its
  // bucket; counted from 1.
  mutable std::vector<std::uint32_t> buckets_, before_;
  mutable unsigned searches_ = 0;
  std::vector<bool> hidden_;  // empty: not known
};

}  // namespace zo
