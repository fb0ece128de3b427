// What a library holds, in memory: its entries in the order of the file, found by name.
//
// Threads: one at a time.
// Cost:    finding a name is O(1) and the number of entries of that name; a place is found by
//          bisection.
#pragma once

#include "library/scan.h"

namespace zo {

struct IndexEntry {
  std::uint64_t position = 0;
  EntryRecord record;
  ContentTrailer trailer;
  std::size_t nameBegin = 0, nameSize = 0;  // among the names
  std::size_t hash = 0;                     // of the name
  std::size_t before = 0;                   // the next older entry in its bucket, counted from 1

  [[nodiscard]] std::uint64_t dataPosition() const {
    return position + kRecordSize + record.nameLength;
  }
  [[nodiscard]] std::uint64_t end() const { return dataPosition() + record.storedSize; }
};

class LibraryIndex {
 public:
  void clear();
  // Makes room for so many.
  void reserve(std::size_t count);
  // Entries come in the order of the file. One that cannot be added leaves all as it was.
  void add(const RawEntry& raw);
  // A new record and name for the entry at that position.
  void replace(const RawEntry& raw);
  void clearFlags(std::uint64_t position, std::uint16_t flags);
  void removeLast() noexcept;

  [[nodiscard]] const std::vector<IndexEntry>& entries() const { return entries_; }
  [[nodiscard]] std::wstring_view name(const IndexEntry& entry) const;
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
    return static_cast<std::uint64_t>(&entry - entries_.data()) + 1;
  }
  // No stored member has a larger one.
  [[nodiscard]] std::uint32_t largestNumber() const { return largestNumber_; }

 private:
  // From the newest to the oldest of a name, until the visitor returns false.
  template <class Visitor>
  void visitNamed(std::wstring_view wanted, const Visitor& visit) const;
  [[nodiscard]] const IndexEntry* findFirst(std::wstring_view wanted, bool isLive) const;
  [[nodiscard]] std::size_t& bucket(std::size_t hash) noexcept;
  [[nodiscard]] std::size_t newest(std::size_t hash) const;
  [[nodiscard]] bool isNamed(const IndexEntry& entry, std::wstring_view wanted,
                             std::size_t hash) const;
  void keepName(IndexEntry& entry, std::string_view bytes);
  void link(std::size_t number);
  void unlink(std::size_t number) noexcept;
  void makeBuckets(std::size_t count);

  std::vector<IndexEntry> entries_;
  std::uint32_t largestNumber_ = 0;
  std::wstring names_;
  std::vector<std::size_t> buckets_;  // the newest entry of each, counted from 1
};

}  // namespace zo
