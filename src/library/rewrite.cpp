// Rewriting a library without some of its entries: into a file beside it, which takes its place in
// one step.
#include <algorithm>

#include "files/fresh_file.h"
#include "library/copy.h"
#include "library/entry_search.h"
#include "library/operations.h"
#include "library/read_member.h"

namespace zo {
namespace {

// Whole pages are written, of whole pages: that is a tenth faster.
struct alignas(4096) Buffer {
  unsigned char bytes[kPiece];
};

struct Range {
  std::uint64_t begin, end;
  [[nodiscard]] std::uint64_t size() const { return end - begin; }
};

using Drops = std::function<bool(const IndexEntry&)>;

// The file that is to become the library; removed unless it does.
class Beside {
 public:
  explicit Beside(const std::wstring& path)
      : system_(path.c_str()),
        fresh_(createFresh(stemBeside(ZoFileName(std::wstring_view(path))), kEndingBeside,
                           GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                           FILE_ATTRIBUTE_NORMAL)) {}

  [[nodiscard]] bool isOpen() const noexcept { return fresh_.isOurs; }
  [[nodiscard]] const SystemPath& library() const noexcept { return system_; }
  // The header and what stays, on the disk and locked.
  bool write(LibraryState& library, const std::vector<Range>& ranges, Progress& watched) {
    file_.take(std::move(fresh_.file));
    if (!file_.write(0, library.header().bytes()) || !copy(library, ranges, watched) ||
        !file_.flush()) {
      return false;
    }
    return file_.lock() || reportFailure(L"lockRange");
  }
  int putInPlaceOfLibrary(Change& change) {
    return change.replaceBy(std::move(file_), fresh_, system_);
  }

 private:
  bool copy(LibraryState& library, const std::vector<Range>& ranges, Progress& watched) {
    const auto buffer = std::make_unique<Buffer>();
    std::uint64_t at = kHeaderSize;
    for (const Range& range : ranges) {
      DiskSink written(file_, at);
      WatchedSink sink(written, watched);
      if (!copyPart(library.bytes(), range.begin, range.size(), sink, buffer->bytes, at)) {
        return false;
      }
      at += range.size();
    }
    return watched.finish();
  }

  SystemPath system_;  // that of the library
  FreshFile fresh_;
  DiskFile file_;  // is closed before it is removed
};

// What stays, as few long ranges: all but what is dropped, entries without a name too.
std::vector<Range> keptRanges(const LibraryIndex& index, std::uint64_t end, const Drops& drops) {
  std::vector<Range> ranges;
  std::uint64_t at = kHeaderSize;
  const auto keepUpTo = [&](std::uint64_t position) {
    if (at < position) ranges.push_back({at, position});
  };
  for (const IndexEntry& entry : index.entries()) {
    if (!drops(entry)) continue;
    keepUpTo(entry.position);
    at = entry.end();
  }
  keepUpTo(end);
  return ranges;
}

// Whether no entry that is to go swallowed others that are not.
bool mayDrop(LibraryState& library, const Drops& drops, Progress& watched) {
  for (const IndexEntry& found : library.index().entries()) {
    if (!drops(found)) continue;
    RawEntry entry;
    if (!library.load(found, entry)) return false;
    const bool isSound = extentOf(library, entry, watched) == Extent::kSound;
    if (!watched.goesOn()) return false;
    if (isSound || holdsLibrary(library, entry)) continue;
    EntrySearch search(library.bytes(), library.bytes().size(), [&] { return watched.goesOn(); });
    search.know(entry.end());
    search.search(entry.position + 1, entry.end());
    if (search.found().empty()) continue;
    SetLastError(ERROR_FILE_CORRUPT);
    return reportFailure(L"reorganize");
  }
  return watched.goesOn();
}

// The members that are open as files stay with their entries, which are where the index says.
void movePlaces(LibraryState& library, const Drops& drops) {
  for (MemberPlace* const place : library.places) {
    if (place->isGone) continue;
    std::uint64_t dropped = 0;
    for (const IndexEntry& entry : library.index().entries()) {
      const bool isDropped = drops(entry);
      if (entry.position == place->entry.position) {
        place->isGone = isDropped;
        place->entry.position -= dropped;
        break;
      }
      if (isDropped) dropped += entry.end() - entry.position;
    }
  }
}

}  // namespace

int rewrite(LibraryState& library, Change& change, const Drops& drops) {
  const std::vector<Range> ranges = keptRanges(library.index(), change.end(), drops);
  std::uint64_t total = 0;
  for (const Range& range : ranges) total += range.size();
  // What goes at the end goes with one cut.
  const bool isBegin = ranges.empty() || (ranges.size() == 1 && ranges[0].begin == kHeaderSize);
  Progress watched = library.progress(isBegin ? 0 : total);
  if (!watched.begin() || !mayDrop(library, drops, watched)) return ZoResult::refused;
  int code = ZoResult::refused;
  if (isBegin) {
    code = change.cutTo(kHeaderSize + total);
  } else {
    Beside beside(library.path());
    if (!beside.isOpen()) {
      reportFailure(L"reorganize");
      return code;
    }
    // Not after all is copied.
    bool isInUse = false;
    if (change.askWhetherInUse(beside.library(), isInUse)) return code;
    if (isInUse) {
      SetLastError(ERROR_SHARING_VIOLATION);
      reportFailure(L"reorganize");
      return ZoResult::libraryInUse;
    }
    if (!beside.write(library, ranges, watched)) return code;
    code = beside.putInPlaceOfLibrary(change);
  }
  if (code == ZoResult::ok) movePlaces(library, drops);
  return code;
}

int reorganize(LibraryState& library) {
  Change change(library);
  if (const int code = change.begin()) return code;
  return rewrite(library, change, [](const IndexEntry& entry) { return !entry.record.isLive(); });
}

}  // namespace zo
