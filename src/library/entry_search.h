// Entries that no scan comes to: behind a damage, and in what a damaged entry swallowed.
//
// No hint of an entry is trusted. An entry is found when its data have the check value that goes
// with them, or when it is followed by entries up to one that is known, or up to the file's end.
//
// Errors:  what cannot be read is passed over, and told.
// Cost:    each byte of a range is looked at once, from the last to the first; the data of what
//          looks like entries is read for their check values up to kDepth times the size of the
//          file and kFree bytes, however many there are; beyond that only what follows counts. So
//          no file takes longer than in proportion to its size. Memory: some ten bytes for each
//          entry that was found or is known.
#pragma once

#include <functional>
#include <unordered_set>

#include "library/scan.h"

namespace zo {

class EntrySearch {
 public:
  static constexpr std::uint64_t kDepth = 8, kFree = std::uint64_t{64} << 20;

  // `goesOn` is asked now and then; the search ends when it says no.
  EntrySearch(ByteStore& store, std::uint64_t size, std::function<bool()> goesOn = {});

  // An entry, or the end of them, stands there.
  void know(std::uint64_t position) { known_.insert(position); }
  [[nodiscard]] bool knows(std::uint64_t position) const { return known_.contains(position); }
  // Searches for entries that begin in the range. Ranges come from the last to the first; what is
  // found is known from then on.
  void search(std::uint64_t begin, std::uint64_t end);
  // The positions, from the last to the first.
  [[nodiscard]] const std::vector<std::uint64_t>& found() const { return found_; }
  // Where the file cannot be read, from the last to the first.
  [[nodiscard]] const std::vector<std::uint64_t>& unreadable() const { return unreadable_; }

 private:
  [[nodiscard]] std::uint64_t searchPiece(std::uint64_t begin, std::uint64_t end);
  void consider(std::uint64_t position, const unsigned char* at, std::size_t count);
  [[nodiscard]] bool isProven(const RawEntry& entry);

  ByteStore& store_;
  ReadWindow window_;
  std::function<bool()> goesOn_;
  std::unordered_set<std::uint64_t> known_;
  std::vector<std::uint64_t> found_, unreadable_;
  std::uint64_t mayRead_;        // for check values
  std::size_t piece_, overlap_;  // what is read at once; and what of it lies behind the piece
  int failures_ = 0;             // in a row
};

}  // namespace zo
