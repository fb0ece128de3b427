// New names for members, and for deleted ones that come back. One of the same length is written
// where the old one stands; for any other there is no room, and the entry is copied behind the last
// one.
#include <algorithm>
#include <set>
#include <utility>

#include "library/copy.h"
#include "library/edit.h"
#include "library/operations.h"

namespace zo {
namespace {

class Renames {
 public:
  Renames(LibraryState& library, Change& change, Renamed which)
      : library_(library), change_(change), isRecovery_(which == Renamed::kDeleted) {}

  // What is to get another name, and what becomes deleted with it.
  int add(const Renaming& renaming) {
    Move move{.from = nullptr, .newName = {}};
    const bool keeps = isRecovery_ && keepsName(renaming);
    if (!keeps && renaming.newName.isURL()) return ZoResult::invalid;
    if (!keeps && !encodeName(renaming.newName, move.newName)) return ZoResult::refused;
    const std::size_t known = leaving_.size(), knownFurther = further_.size();
    if (const int code = collect(renaming.member)) return code;
    move.from = leaving_[known];
    if (keeps && !loadName(*move.from, move.newName)) return ZoResult::refused;
    if (!seen_.emplace(move.from, move.newName).second) {  // given again: it counts once
      leaving_.resize(known);
      further_.resize(knownFurther);
      move.from = nullptr;
    }
    moves_.push_back(std::move(move));
    return ZoResult::ok;
  }
  // Nothing is added from here on.
  void close() { std::sort(leaving_.begin(), leaving_.end()); }
  // Whether the i-th new name is free when all old ones are gone.
  int check(std::size_t i) {
    if (!moves_[i].from) return ZoResult::ok;
    const auto same = std::ranges::equal_range(leaving_, moves_[i].from);
    if (same.size() != 1 && !isFirstOfSeveral(i)) return ZoResult::refused;  // two new names
    RawEntry renamed{.record = moves_[i].from->record, .name = moves_[i].newName};
    renamed.record.clear(kIsDeleted);
    names_.add(renamed);
    const std::wstring name(names_.name(names_.entries().back()));
    if (names_.allLive(name).size() > 1) return ZoResult::memberExists;
    const auto stays = [this](const IndexEntry* entry) {
      return !std::binary_search(leaving_.begin(), leaving_.end(), entry);
    };
    return std::ranges::any_of(library_.index().allLive(name), stays) ? ZoResult::memberExists
                                                                      : ZoResult::ok;
  }
  int run() {
    std::erase_if(moves_, [](const Move& move) { return !move.from; });
    std::uint64_t total = 0;
    for (const Move& move : moves_) total += isMoved(move) ? move.from->record.storedSize : 0;
    Progress watched = library_.progress(total);
    if (std::ranges::any_of(moves_, isMoved) && !watched.begin()) return ZoResult::refused;
    if (const int code = patchAsDeleted(change_, library_, further_)) return code;
    for (const Move& move : moves_) {
      if (!rename(move, watched)) return ZoResult::refused;
    }
    return watched.finish() ? change_.commit() : ZoResult::refused;
  }

 private:
  struct Move {
    const IndexEntry* from;  // null for one that was given before
    std::string newName;
  };

  // With the bytes that it has, which no other writer need have made.
  static bool keepsName(const Renaming& renaming) {
    const ZoLibEntry* const entry = renaming.member.entry;
    return entry && entry->name.view() == renaming.newName.view();
  }
  bool loadName(const IndexEntry& from, std::string& name) {
    RawEntry entry;
    if (!library_.load(from, entry)) return false;
    name = std::move(entry.name);
    return true;
  }
  // Whether a later one moves the same entry, and none before: the second new name is refused.
  [[nodiscard]] bool isFirstOfSeveral(std::size_t i) const {
    const auto here = moves_.begin() + static_cast<std::ptrdiff_t>(i);
    const auto isSame = [&](const Move& move) { return move.from == here->from; };
    return std::none_of(moves_.begin(), here, isSame) &&
           std::any_of(here + 1, moves_.end(), isSame);
  }
  static bool isMoved(const Move& move) {
    return move.newName.size() != move.from->record.nameLength;
  }

  int collectDeleted(const MemberRef& member) {
    const IndexEntry* found = nullptr;
    if (const int code = findDeleted(library_, member, Versions::kLatest, found)) return code;
    if (found->record.isLive()) return ZoResult::refused;
    leaving_.push_back(found);
    return ZoResult::ok;
  }

  int collect(const MemberRef& member) {
    if (isRecovery_) return collectDeleted(member);
    if (member.entry) {
      const IndexEntry* found = nullptr;
      if (const int code = findListed(library_, *member.entry, found)) return code;
      if (!found->record.isLive()) return ZoResult::refused;
      leaving_.push_back(found);
      return ZoResult::ok;
    }
    const std::vector<const IndexEntry*> found = library_.index().allLive(member.name->view());
    if (found.empty()) return notFound(library_.scan().end);
    leaving_.insert(leaving_.end(), found.begin(), found.end());
    // Further members of the name would come to light.
    further_.insert(further_.end(), found.begin() + 1, found.end());
    return ZoResult::ok;
  }

  bool rename(const Move& move, Progress& watched) {
    RawEntry old;
    if (!library_.load(*move.from, old)) return false;
    RawEntry renamed{.position = old.position,
                     .record = old.record,
                     .name = move.newName,
                     .trailer = old.trailer};
    renamed.record.nameLength = static_cast<std::uint16_t>(renamed.name.size());
    renamed.record.clear(kIsDeleted);
    if (!isMoved(move)) return change_.tryPatch(std::move(renamed));
    renamed.position = change_.end();
    renamed.record.clear(kEndsScan);
    DiskSink data = change_.dataOf(renamed);
    WatchedSink sink(data, watched);
    if (!change_.reserve() ||
        !copyPart(library_.bytes(), old.dataPosition(), old.record.storedSize, sink)) {
      return false;
    }
    RawEntry hidden = renamed;
    hidden.record.set(kIsDeleted);
    old.record.set(kIsDeleted);
    return (isRecovery_ || change_.tryPatch(std::move(old))) &&
           change_.tryPatch(std::move(renamed)) && change_.append(std::move(hidden));
  }

  LibraryState& library_;
  Change& change_;
  bool isRecovery_;
  std::vector<Move> moves_;
  std::vector<const IndexEntry*> leaving_, further_;
  std::set<std::pair<const IndexEntry*, std::string>> seen_;
  LibraryIndex names_;  // the new ones
};

}  // namespace

int renameMembers(LibraryState& library, std::span<const Renaming> renamings, Renamed which,
                  std::size_t& at) {
  at = renamings.size();
  Change change(library);
  Renames renames(library, change, which);
  if (const int code = change.begin()) return code;
  for (std::size_t i = 0; i < renamings.size(); ++i) {
    if (const int code = renames.add(renamings[i])) return at = i, code;
  }
  renames.close();
  for (std::size_t i = 0; i < renamings.size(); ++i) {
    if (const int code = renames.check(i)) return at = i, code;
  }
  return renames.run();
}

}  // namespace zo
