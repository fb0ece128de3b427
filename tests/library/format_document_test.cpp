// The hexdump of docs/formats/library.md is what the code writes and reads; gates and redo entries.
#include <sstream>

#include "files/library/format.h"
#include "files/library/write_lock.h"
#include "library/library_fixture.h"
#include "support/file_bytes.h"

using namespace zo::test;

namespace {

// The bytes of the document's hexdump: an offset of eight digits, two spaces, bytes with single
// spaces, two spaces, a remark.
std::string hexdump() {
  std::string text = fileBytes(ZO_SOURCE_ROOT "/docs/formats/library.md");
  std::erase(text, '\r');
  const std::string opening = "```hexdump library\n";
  std::istringstream lines(text.substr(text.find(opening) + opening.size()));
  std::string bytes;
  for (std::string line; std::getline(lines, line) && line != "```";) {
    EXPECT_EQ(std::stoul(line.substr(0, 8), nullptr, 16), bytes.size()) << line;
    for (std::size_t at = 10; at < line.size() && line[at] != ' '; at += 3) {
      bytes += static_cast<char>(std::stoul(line.substr(at, 2), nullptr, 16));
    }
  }
  return bytes;
}

}  // namespace

TEST_F(LibraryTest, DocumentShowsWhatIsWritten) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"a.txt", "hello"), 0);
  ASSERT_EQ(add(library, L"B", std::string(20, 'x'), false, ZoLibrary::kCompress, 1024), 0);
  for (const wchar_t* const member : {L"a.txt", L"B"}) {
    ZoFile file;
    ASSERT_EQ(library.getFile(file, member), 0);
    file.setCreationTime({0x69050000, 0x01D5C036});
    file.setLastAccessTime({0x0C358000, 0x01D6DFD1});
    file.setLastWriteTime({0x84FC4000, 0x01D7FEA2});
  }
  ASSERT_EQ(library.deleteFile(L"a.txt"), 0);
  ASSERT_EQ(library.setCheckSum(0x0102030405060708), 0);
  ASSERT_EQ(library.close(), 0);
  EXPECT_EQ(hexdump(), bytesOf(path_));
  EXPECT_EQ(zo::writeLockName(L"C:\\Parts\\a.lib"), zo::writeLockName(L"c:\\parts\\A.LIB"));
}

// Both kinds of gates, at every place in a sector, and what a reader and the next writer make of a
// change that was committed and not finished.
TEST_F(LibraryTest, EveryGateAndAPendingRedoAreUnderstood) {
  for (std::size_t filler = 400; filler < 406; ++filler) {
    SCOPED_TRACE(filler);
    // The entry behind stands at 459 and its neighbours.
    const std::string first =
        HandMade{.name = "f", .data = std::string(filler - 32 - 55 + 57, 'f')}.bytes();
    put(path_, header() + first);
    ZoLibrary library;
    ASSERT_EQ(openForWriting(library), 0);
    ASSERT_EQ(add(library, L"old", "old"), 0);
    ASSERT_EQ(library.close(), 0);
    const std::string before = bytesOf(path_);
    const std::size_t at = header().size() + first.size();
    const zo::Gate gate = zo::gateOf(at);
    EXPECT_EQ(gate.offset, at % 512 >= 459 && at % 512 <= 461 ? 8u : 50u);
    std::string closed = before;
    zo::closeGate(gate, {reinterpret_cast<unsigned char*>(closed.data()) + at, 54});
    put(path_, closed);
    ASSERT_EQ(library.open(path_), 0);
    EXPECT_EQ(names(library), (Names{L"f"}));
    EXPECT_EQ(library.trailingBytes(), 60u);
    ASSERT_EQ(openForWriting(library), 0);
    EXPECT_EQ(library.trailingBytes(), 0u);
    ASSERT_EQ(library.close(), 0);

    // Rename "old" to "new" by a redo at the end.
    zo::RawEntry patch{.position = at, .record = {}, .name = "new"};
    patch.record = zo::decodeRecord(std::span<const unsigned char, 54>(
        reinterpret_cast<const unsigned char*>(before.data()) + at, 54));
    const auto data = zo::encodeRedo({&patch, 1});
    const std::string redo =
        HandMade{.name = "<zo-redo>", .data = {data.begin(), data.end()}, .flags = 0x600}.bytes();
    for (const char* const tail : {"", "torn"}) {
      put(path_, before + redo + tail);
      ASSERT_EQ(library.open(path_), 0);
      EXPECT_EQ(names(library, true), (Names{L"f", L"new"}));
      EXPECT_EQ(content(library, L"new"), "old");
      ASSERT_EQ(openForWriting(library), 0);
      EXPECT_EQ(names(library, true), (Names{L"f", L"new"}));
      ASSERT_EQ(library.close(), 0);
      std::string after = before;
      after.replace(at + 54, 3, "new");
      EXPECT_EQ(bytesOf(path_), after);
    }
    // One that does not hold is a deleted member.
    std::string broken = redo;
    broken.back() = static_cast<char>(broken.back() ^ 1);
    put(path_, before + broken);
    ASSERT_EQ(openForWriting(library), 0);
    EXPECT_EQ(names(library, true), (Names{L"f", L"old", L"-<zo-redo>"}));
  }
}
