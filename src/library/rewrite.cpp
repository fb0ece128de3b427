// Rewriting a library without some of its entries: into a file beside it, which takes its place in
// one step.
#include <algorithm>

#include "files/fresh_file.h"
#include "files/replace_file.h"
#include "library/entry_search.h"
#include "library/library_core.h"

namespace zo {
namespace {

constexpr std::size_t kBuffer = LibraryCore::kPiece;

// Whole pages are written, of whole pages: that is a tenth faster.
struct alignas(4096) Buffer {
  unsigned char bytes[kBuffer];
};

struct Range {
  std::uint64_t begin, end;
};

// The file that is to become the library; removed unless it does.
class Beside {
 public:
  explicit Beside(const std::wstring& path)
      : system_(path.c_str()),
        fresh_(createFresh(stemBeside(ZoFileName(std::wstring_view(path))), kEndingBeside,
                           GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                           FILE_ATTRIBUTE_NORMAL)) {}

  [[nodiscard]] bool isOpen() const noexcept { return fresh_.isOurs; }
  LibraryFile& file() noexcept {
    if (fresh_.file) file_.take(std::move(fresh_.file));
    return file_;
  }
  // That of the library.
  [[nodiscard]] const SystemPath& systemPath() const noexcept { return system_; }
  bool putInPlaceOfLibrary() noexcept { return putInPlace(fresh_, system_, false); }

 private:
  SystemPath system_;
  FreshFile fresh_;
  LibraryFile file_;  // is closed before it is removed
};

// What stays, as few long ranges: all but what is dropped, entries without a name too.
std::vector<Range> keptRanges(const LibraryIndex& index, std::uint64_t end,
                              const std::function<bool(const IndexEntry&)>& drops) {
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

bool copyRanges(LibraryFile& from, const std::vector<Range>& ranges, LibraryFile& to,
                Progress& progress) {
  const auto buffer = std::make_unique<Buffer>();
  std::uint64_t at = kHeaderSize;
  for (const Range& range : ranges) {
    for (std::uint64_t next = range.begin; next < range.end;) {
      const auto count = static_cast<std::size_t>(
          std::min<std::uint64_t>(kBuffer - at % kBuffer, range.end - next));
      const std::span<unsigned char> piece(buffer->bytes, count);
      if (!from.read(next, piece) || !to.write(at, piece)) return false;
      next += count;
      at += count;
      if (!progress.add(count)) return false;
    }
  }
  return progress.finish();
}

}  // namespace

int LibraryCore::rewrite(const std::function<bool(const IndexEntry&)>& drops) {
  const std::vector<Range> ranges = keptRanges(index, scan.position, drops);
  std::uint64_t total = 0;
  for (const Range& range : ranges) total += range.end - range.begin;
  // What goes at the end goes with one cut.
  const std::uint64_t kept = kHeaderSize + total;
  const bool isBegin = ranges.empty() || (ranges.size() == 1 && ranges[0].begin == kHeaderSize);
  Progress watched = progress(isBegin ? 0 : total);
  if (!watched.begin() || !mayDrop(drops, watched)) return ZoResult::refused;
  if (isBegin) {
    if (kept == file.size()) return ZoResult::ok;
    isIndexed = false;
    if (!file.cut(kept)) return ZoResult::refused;
    // It is done and cannot be taken back: a flush that fails leaves it to the platform when.
    static_cast<void>(file.flush());
    file.touch();
    movePlaces(drops);
    return ZoResult::ok;
  }

  Beside beside(path);
  if (!beside.isOpen()) {
    reportFailure(L"reorganize");
    return ZoResult::refused;
  }
  LibraryFile& copy = beside.file();
  if (!copy.write(0, header.bytes()) || !copyRanges(file, ranges, copy, watched) || !copy.flush()) {
    return ZoResult::refused;
  }
  if (!copy.lock()) {
    reportFailure(L"lockRange");
    return ZoResult::refused;
  }
  // The platform replaces no file that is open. The mutex keeps other writers out meanwhile, and
  // the new file is locked already. Nothing throws until the library has a file again.
  isIndexed = false;
  static_cast<void>(file.close());
  if (beside.putInPlaceOfLibrary()) {
    file = std::move(copy);
    movePlaces(drops);
    return ZoResult::ok;
  }
  reportFailure(L"reorganize");
  if (!reopen(beside.systemPath())) release();
  return ZoResult::refused;
}

// Whether no entry that is to go swallowed others that are not.
bool LibraryCore::mayDrop(const std::function<bool(const IndexEntry&)>& drops, Progress& watched) {
  for (const IndexEntry& found : index.entries()) {
    if (!drops(found)) continue;
    RawEntry entry;
    if (!load(found, entry)) return false;
    const bool isSound = extentOf(entry, watched) == Extent::kSound;
    if (!watched.add(0)) return false;
    if (isSound || holdsLibrary(entry)) continue;
    EntrySearch search(file, file.size(), [&] { return watched.add(0); });
    search.know(entry.end());
    search.search(entry.position + 1, entry.end());
    if (search.found().empty()) continue;
    SetLastError(ERROR_FILE_CORRUPT);
    return reportFailure(L"reorganize");
  }
  return watched.add(0);
}

int LibraryCore::reorganize() {
  if (const int code = mayWrite()) return code;
  if (const int code = settle()) return code;
  return rewrite([](const IndexEntry& entry) { return !entry.record.isLive(); });
}

void LibraryCore::movePlaces(const std::function<bool(const IndexEntry&)>& drops) {
  for (MemberPlace* const place : places) {
    std::uint64_t dropped = 0;
    for (const IndexEntry& entry : index.entries()) {
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

}  // namespace zo
