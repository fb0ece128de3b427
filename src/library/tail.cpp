#include "library/tail.h"

#include "library/entry_search.h"
#include "library/read_member.h"

namespace zo {
namespace {

// Whether the scan came to the end of the entries by entries that end where they say, so that none
// swallowed others. One that is proven at the end is enough: what precedes it is out of question.
bool endsWhereItSays(LibraryState& library) {
  Progress unwatched;
  EntrySearch search(library.bytes(), library.bytes().size());
  search.know(library.bytes().size());
  std::uint64_t next = library.scan().position;
  for (std::size_t i = library.index().entries().size(); i-- > 0;) {
    RawEntry entry;
    if (!library.load(library.index().entries()[i], entry)) return false;
    search.search(entry.end(), next);  // entries without a name
    const Extent extent = extentOf(library, entry, unwatched);
    if (extent == Extent::kDamaged) return false;
    if (extent == Extent::kSound) return search.found().empty();
    if (!holdsLibrary(library, entry)) search.search(entry.position + 1, entry.end());
    next = entry.position;
  }
  search.search(kHeaderSize, next);
  return search.found().empty();
}

}  // namespace

ScanEnd tailEnd(LibraryState& library) {
  if (library.scan().end != ScanEnd::kMark) return library.scan().end;
  ReadWindow window(library.bytes(), library.bytes().size());
  return endAt(window, library.scan().position);
}

bool isOwnTail(LibraryState& library) {
  const std::uint64_t position = library.scan().position;
  if (!library.header().hasMagic() || position > library.bytes().size()) return false;
  const ScanEnd tail = tailEnd(library);
  // An entry without a name may be one whose name's length is damaged: then the rest is its own.
  const auto entries = library.index().entries();
  const bool followsMember = position == (entries.empty() ? kHeaderSize : entries.back().end());
  const bool isCut = followsMember && (tail == ScanEnd::kShort || tail == ScanEnd::kZero);
  return (isCut || tail == ScanEnd::kClosedGate) && endsWhereItSays(library);
}

}  // namespace zo
