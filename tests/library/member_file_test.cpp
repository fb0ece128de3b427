// Members as file objects, read and written.
#include <zo/library/lib_file.h>
#include <zo/names/member_name.h>

#include "library/library_fixture.h"
#include "library/listing.h"

using namespace zo::test;

namespace {

std::string pattern(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  return bytes;
}

}  // namespace

// The name of both in one text, which opens the library, too, for as long as the file is open.
TEST_F(LibraryTest, MembersOpenByOneName) {
  {
    ZoLibrary library;
    ASSERT_EQ(openForWriting(library), 0);
    ASSERT_EQ(add(library, L"dir/a", "text"), 0);
    ASSERT_EQ(library.close(), 0);
  }
  const auto name = [&](const wchar_t* member) { return zoMemberName(path_, member); };
  const auto content = [&](const wchar_t* member) {
    ZoFile file;
    char bytes[32];
    if (const int code = file.open(name(member))) return "(" + std::to_string(code) + ")";
    return std::string(bytes, file.read(bytes, sizeof bytes));
  };
  const auto write = [&](const wchar_t* member, ZoFile::CreationMode mode) {
    ZoFile file;
    if (const int code = file.open(name(member), ZoFile::kWrite, mode)) return code;
    EXPECT_EQ(file.write("new", 3), 3u);
    return file.close();
  };
  EXPECT_EQ(content(L"DIR/A"), "text");
  EXPECT_EQ(content(L"b"), "(1)");
  EXPECT_EQ(write(L"b", ZoFile::kTruncateExisting), ZoResult::refused);
  EXPECT_EQ(write(L"b", ZoFile::kOpenAlways), ZoResult::refused) << "would have to keep content";
  EXPECT_EQ(write(L"b", ZoFile::kCreateNew), 0);
  EXPECT_EQ(content(L"b"), "new");
  EXPECT_EQ(write(L"b", ZoFile::kCreateNew), ZoResult::memberExists);
  EXPECT_EQ(write(L"dir/a", ZoFile::kCreateAlways), 0);
  EXPECT_EQ(content(L"dir/a"), "new");
  {
    ZoFile file, copy;
    ASSERT_EQ(file.open(name(L"c"), ZoFile::kWrite, ZoFile::kCreateNew), 0);
    copy = file;
    file.cancel();
    EXPECT_EQ(copy.close(), ZoResult::refused);
  }
  EXPECT_EQ(content(L"c"), "(1)");
  ZoFile file;
  EXPECT_EQ(file.open(zoMemberName(path_, L"a"), ZoFile::kRead, ZoFile::kOpenAlways),
            ZoResult::refused);
  EXPECT_EQ(file.open(std::wstring(L"a|b|c")), ZoResult::nameInvalid);
  EXPECT_EQ(file.open(std::wstring(L"absent.lib|a")), ZoResult::refused);
  std::filesystem::remove(std::filesystem::path(path_.fullName()));
  EXPECT_EQ(content(L"b"), "(1)") << "no library stays open";
}

TEST_F(LibraryTest, MembersReadAndSeekAsFiles) {
  const std::string bytes = pattern(10'000);
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"before", "gone soon"), 0);
  ASSERT_EQ(add(library, L"stored", bytes), 0);
  ASSERT_EQ(add(library, L"packed", bytes, false, ZoLibrary::kCompress), 0);
  for (const wchar_t* const member : {L"stored", L"packed"}) {
    SCOPED_TRACE(testing::Message() << member);
    ZoFile file;
    ASSERT_EQ(library.getFile(file, member), 0);
    char some[700];
    std::mt19937 random(1);
    for (int round = 0; round < 50; ++round) {
      const unsigned at = random() % 11'000, count = random() % unsigned{sizeof some};
      ASSERT_EQ(file.seek(at), at);
      const std::string expected = at < bytes.size() ? bytes.substr(at, count) : std::string();
      ASSERT_EQ(std::string(some, file.read(some, count)), expected);
      ASSERT_EQ(file.currentPos(), static_cast<std::int64_t>(at + expected.size()));
    }
    EXPECT_EQ(file.seek(-10, ZoFile::kEnd), 9'990);
    EXPECT_EQ(file.seek(-1), -1);
    expectError(ERROR_NEGATIVE_SEEK);
    EXPECT_EQ(file.seek(-10'001, ZoFile::kCurrent), -1);
    EXPECT_EQ(file.seek(5'000), 5'000);
    EXPECT_EQ(file.write("x", 1), 0u);
    expectError(ERROR_ACCESS_DENIED);
    // A copy shares the position, one for another access has its own.
    ZoFile copy(file), own(file, static_cast<unsigned int>(ZoFile::kRead));
    EXPECT_EQ(copy.read(some, 10), 10u);
    EXPECT_EQ(file.currentPos(), 5'010);
    EXPECT_EQ(own.currentPos(), 0);
    EXPECT_FALSE(ZoFile(file, static_cast<unsigned int>(ZoFile::kReadWrite)).isOpen());
    // Whatever moves in the library, an open member stays the same.
    static_cast<void>(library.deleteFile(L"before", true));
    EXPECT_EQ(own.read(some, 700), 700u);
    EXPECT_EQ(std::string(some, 700), bytes.substr(0, 700));
    std::FILE* stream = nullptr;
    ASSERT_EQ(library.getCFile(&stream, member), 0);
    EXPECT_EQ(std::string(some, std::fread(some, 1, 700, stream)), bytes.substr(0, 700));
    std::fclose(stream);
  }
  ZoFile left;
  ASSERT_EQ(library.getFile(left, L"stored"), 0);
  ASSERT_EQ(library.open(path_), 0);
  char byte;
  EXPECT_FALSE(left.isOpen());
  EXPECT_EQ(left.read(&byte, 1), 0u);
  ASSERT_EQ(library.getFile(left, L"stored"), 0);
  EXPECT_EQ(left.setLastWriteTime({1, 1}), 1004);
}

TEST_F(LibraryTest, AMemberThatWasRemovedBecomesNoOther) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  for (const wchar_t* const member : {L"first", L"other", L"third"}) {
    ASSERT_EQ(add(library, member, pattern(100)), 0);
  }
  ZoFile file;
  ASSERT_EQ(library.getFile(file, L"first"), 0);
  char some[100];
  const auto read = [&] {
    SetLastError(ERROR_SUCCESS);
    const unsigned int got = file.read(some, sizeof some);
    return std::pair(got, GetLastError());
  };
  EXPECT_EQ(read(), std::pair(100u, DWORD{ERROR_SUCCESS}));
  EXPECT_EQ(read(), std::pair(0u, DWORD{ERROR_SUCCESS})) << "its end has no reason";
  ASSERT_EQ(file.seek(50), 50);
  // Another one comes to its place, and the file is rewritten once more.
  for (const wchar_t* const member : {L"first", L"third"}) {
    ASSERT_EQ(library.deleteFile(member, true), 0);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(read(), std::pair(0u, DWORD{ERROR_INVALID_HANDLE})) << "that was not its end";
    EXPECT_EQ(file.size() + file.seek(0), -2);
  }
  EXPECT_EQ(file.close(), 0);
}

TEST_F(LibraryTest, MembersAreWrittenAsFiles) {
  std::string bytes = pattern(300'000);
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  constexpr std::pair<ZoLibrary::compMode, int> kModes[] = {
      {ZoLibrary::kStore, 0}, {ZoLibrary::kCompress, 2048}, {ZoLibrary::kAutomatic, 2048}};
  for (const auto& [mode, stored] : kModes) {
    ASSERT_EQ(add(library, L"member", "old", true), 0);
    ZoFile file;
    ASSERT_EQ(library.getFile(file, L"Member", ZoFile::kWrite, mode), 0);
    EXPECT_EQ(file.write(bytes.data(), 300'000), 300'000u);
    EXPECT_EQ(file.seek(1), 1);
    EXPECT_EQ(file.write("!", 1), 1u);
    bytes[1] = '!';
    ZoFile copy = file;
    EXPECT_EQ(file.close(), 0);
    EXPECT_EQ(contentOf(library, L"member"), "old") << "until the last copy is closed";
    EXPECT_EQ(copy.close(), 0);
    EXPECT_EQ(contentOf(library, L"member"), bytes);
    ZoLibEntry entry;
    ASSERT_EQ(library.getEntry(L"member", entry), 0);
    EXPECT_EQ(entry.mode, stored);
  }
  ZoFile late;
  ASSERT_EQ(library.getFile(late, L"late", ZoFile::kWrite), 0);
  ASSERT_EQ(library.close(), 0);
  EXPECT_EQ(late.write("x", 1), 0u);
  EXPECT_EQ(late.close(), 1);
}

// However a file goes that nobody closed, and a library with a batch that nobody ended.
TEST_F(LibraryTest, WhatIsNotClosedIsNotAdded) {
  using Way = std::function<void(ZoFile&)>;
  ZoFile copy;
  const Way ways[] = {
      [](ZoFile& file) { ZoFile(std::move(file)); },
      [](ZoFile& file) { file.cancel(); },
      [](ZoFile& file) { file.setImpObj(nullptr); },
      [](ZoFile& file) { file = ZoFile(); },
      [&](ZoFile& file) {  // gives up for all that share it
        copy = file;
        file.cancel();
        EXPECT_FALSE(copy.isOpen());
        EXPECT_EQ(copy.write("x", 1), 0u);
        EXPECT_EQ(copy.close(), 1);
      },
      [&](ZoFile& file) {  // the last one is not closed
        copy = file;
        EXPECT_EQ(file.close(), 0);
        copy = ZoFile();
      },
      [](ZoFile& file) {
        const auto fail = [](ZoFile own) { throw static_cast<int>(own.write("more", 4)); };
        EXPECT_THROW(fail(std::move(file)), int);
      },
  };
  {
    ZoLibrary library;
    ASSERT_EQ(openForWriting(library), 0);
    ASSERT_EQ(add(library, L"member", "old"), 0);
    const std::string before = bytesOf(path_);
    for (const Way& way : ways) {
      SCOPED_TRACE(&way - ways);
      ZoFile file;
      ASSERT_EQ(library.getFile(file, L"member", ZoFile::kWrite), 0);
      ASSERT_EQ(file.write("half", 4), 4u);
      way(file);
      EXPECT_FALSE(file.isOpen());
      EXPECT_EQ(file.close(), 0);
      EXPECT_EQ(bytesOf(path_), before);
    }
    // The object opens another file instead, whether that is there or not.
    put(source_, "plain");
    for (const ZoFileName& other : {name(L"missing"), source_}) {
      ZoFile file;
      ASSERT_EQ(library.getFile(file, L"member", ZoFile::kWrite), 0);
      ASSERT_EQ(file.write("half", 4), 4u);
      EXPECT_EQ(file.open(other) == 0, other == source_);
      if (file.isOpen()) {
        char content[8] = {};
        EXPECT_EQ(file.read(content, 8), 5u);
        EXPECT_STREQ(content, "plain");
      }
      EXPECT_EQ(bytesOf(path_), before);
    }
    ASSERT_EQ(library.beginBatch(), 0);
    ASSERT_EQ(add(library, L"first of many", "1"), 0);
  }
  ZoLibrary library;
  ASSERT_EQ(library.open(path_), 0);
  EXPECT_EQ(names(library), (Names{L"member"}));
  EXPECT_EQ(contentOf(library, L"member"), "old");
}
