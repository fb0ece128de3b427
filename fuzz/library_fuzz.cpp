// Any bytes as a library: the scan keeps within the file, entries follow one another, what it reads
// is written back the same, a redo leads it nowhere else, and the search behind a damage ends.
#include "fuzz.h"
#include "library/entry_search.h"

using namespace zo;
using namespace zo::test;

namespace {

// The entries, and where they end.
std::vector<RawEntry> entriesOf(const ByteVector& bytes, ScanResult& result) {
  std::vector<RawEntry> entries;
  MemoryStore store(bytes);
  result = scanEntries(store, bytes.size(), [&](const RawEntry& entry) {
    entries.push_back(entry);
    return true;
  });
  ZO_FUZZ_CHECK(!result.redoPosition || mayEndInRedo(store, bytes.size()));
  return entries;
}

void checkEntries(const ByteVector& bytes, const std::vector<RawEntry>& entries,
                  const ScanResult& result) {
  std::uint64_t at = kHeaderSize;
  for (const RawEntry& entry : entries) {
    // Those between have no names.
    ZO_FUZZ_CHECK(entry.position >= at && entry.end() <= bytes.size() && !entry.name.empty());
    const auto written = entry.bytes();
    ZO_FUZZ_CHECK(std::equal(written.begin(), written.end(),
                             bytes.begin() + static_cast<std::ptrdiff_t>(entry.position)));
    ZO_FUZZ_CHECK(!isClosed(entry.record, entry.position));
    at = entry.end();
  }
  ZO_FUZZ_CHECK((result.redoPosition ? result.redoPosition : result.position) >= at);
}

// Written to their places the patches change no way, and the redo is still what it was.
void checkRedo(ByteVector bytes, const std::vector<RawEntry>& entries, const ScanResult& result) {
  if (!result.redoPosition) return;
  const auto again = decodeRedo(encodeRedo(result.redo));
  ZO_FUZZ_CHECK(again && again->size() == result.redo.size());
  for (const RawEntry& patch : result.redo) {
    const auto written = patch.bytes();
    std::copy(written.begin(), written.end(),
              bytes.begin() + static_cast<std::ptrdiff_t>(patch.position));
    ScanResult after;
    const auto patched = entriesOf(bytes, after);
    ZO_FUZZ_CHECK(patched.size() == entries.size() && after.redoPosition == result.redoPosition);
  }
}

// Each place that it gives is an entry, and each is before the one that was found before.
void checkSearch(const ByteVector& bytes) {
  MemoryStore store(bytes);
  EntrySearch search(store, bytes.size());
  search.know(bytes.size());
  search.search(kHeaderSize, bytes.size());
  ReadWindow window(store, bytes.size());
  std::uint64_t before = bytes.size();
  for (const std::uint64_t at : search.found()) {
    RawEntry entry;
    ZO_FUZZ_CHECK(at < before && readEntry(window, at, entry) == ScanEnd::kFileEnd);
    ZO_FUZZ_CHECK(entry.end() <= bytes.size() && !entry.name.empty());
    before = at;
  }
  ZO_FUZZ_CHECK(search.unreadable().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const ByteVector bytes = fuzzInput(data, size);
  ScanResult result;
  const auto entries = entriesOf(bytes, result);
  checkEntries(bytes, entries, result);
  checkRedo(bytes, entries, result);
  checkSearch(bytes);
  return 0;
}
