// Members as file objects, and what several handles and processes see of one library.
#include <zo/files/lib_file.h>

#include "files/library/write_lock.h"
#include "library/library_fixture.h"
#include "support/child_process.h"

using namespace zo::test;

namespace {

std::string readAll(ZoFile& file, unsigned int piece) {
  std::string all, part(piece, '\0');
  while (const unsigned int got = file.read(part.data(), piece)) all.append(part, 0, got);
  return all;
}

std::string pattern(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  return bytes;
}

}  // namespace

TEST_F(LibraryTest, MembersReadAndSeekAsFiles) {
  const std::string bytes = pattern(10'000);
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"before", "gone soon"), 0);
  ASSERT_EQ(add(library, L"stored", bytes), 0);
  ASSERT_EQ(add(library, L"packed", bytes, false, ZoLibrary::kCompress), 0);
  for (const wchar_t* const member : {L"stored", L"packed"}) {
    SCOPED_TRACE(ZoFileName(member).view().size());
    ZoFile file;
    ASSERT_EQ(library.getFile(file, member), 0);
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.name(), ZoFileName(member));
    EXPECT_EQ(file.size(), 10'000);
    EXPECT_EQ(readAll(file, 777), bytes);
    EXPECT_EQ(file.currentPos(), 10'000);
    EXPECT_EQ(file.seek(-10, ZoFile::kEnd), 9'990);
    char some[100];
    EXPECT_EQ(file.read(some, 100), 10u);
    EXPECT_EQ(file.read(some, 100), 0u);
    EXPECT_EQ(file.seek(-1), -1);
    EXPECT_EQ(file.seek(-10'001, ZoFile::kCurrent), -1);
    EXPECT_EQ(file.seek(1LL << 40), 1LL << 40);
    EXPECT_EQ(file.read(some, 1), 0u);
    EXPECT_EQ(file.seek(5'000), 5'000);
    EXPECT_EQ(file.write("x", 1), 0u);
    // A copy shares the position, one for another access has its own.
    ZoFile copy(file), own(file, static_cast<unsigned int>(ZoFile::kRead));
    EXPECT_EQ(copy.read(some, 10), 10u);
    EXPECT_EQ(file.currentPos(), 5'010);
    EXPECT_EQ(own.currentPos(), 0);
    EXPECT_FALSE(ZoFile(file, static_cast<unsigned int>(ZoFile::kReadWrite)).isOpen());
    // Whatever moves in the library, an open member stays the same.
    library.deleteFile(L"before", true);
    EXPECT_EQ(readAll(own, 4'096), bytes);
    // Times reach the entry.
    const FILETIME time{5, 0x01D30000};
    EXPECT_EQ(file.setLastWriteTime(time), 0);
    EXPECT_EQ(file.setCreationTime(time), 0);
    ZoLibEntry entry;
    ASSERT_EQ(library.getEntry(member, entry), 0);
    const FILETIME read = file.lastWriteTime();
    EXPECT_EQ(CompareFileTime(&entry.written, &time), 0);
    EXPECT_EQ(CompareFileTime(&entry.created, &time), 0);
    EXPECT_EQ(CompareFileTime(&read, &time), 0);
    std::FILE* stream = nullptr;
    ASSERT_EQ(library.getCFile(&stream, member), 0);
    std::string streamed(20'000, '\0');
    streamed.resize(std::fread(streamed.data(), 1, streamed.size(), stream));
    EXPECT_EQ(streamed, bytes);
    std::fclose(stream);
    EXPECT_EQ(copy.close(), 0);
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.close(), 0);
    EXPECT_FALSE(file.isOpen());
  }
  ZoFile left;
  ASSERT_EQ(library.getFile(left, L"stored"), 0);
  ASSERT_EQ(library.close(), 0);
  char byte;
  EXPECT_FALSE(left.isOpen());
  EXPECT_EQ(left.read(&byte, 1), 0u);
  EXPECT_EQ(left.seek(0), -1);
  ASSERT_EQ(library.open(path_), 0);
  EXPECT_FALSE(left.isOpen());
  ASSERT_EQ(library.getFile(left, L"stored"), 0);
  EXPECT_EQ(left.setLastWriteTime({1, 1}), 1004);
}

TEST_F(LibraryTest, MembersAreWrittenAsFiles) {
  const std::string bytes = pattern(300'000);
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"member", "old"), 0);
  for (const int level : {0, 1024, 2048, 4096}) {
    ZoFile file;
    ASSERT_EQ(library.getFile(file, L"Member", ZoFile::kWrite, level), 0);
    EXPECT_EQ(file.write(bytes.data(), 300'000), 300'000u);
    EXPECT_EQ(file.seek(1), 1);
    EXPECT_EQ(file.write("!", 1), 1u);
    const FILETIME time{7, 0x01D40000};
    EXPECT_EQ(file.setCreationTime(time), 0);
    ZoFile copy = file;
    EXPECT_EQ(file.close(), 0);
    EXPECT_NE(content(library, L"member").substr(0, 2), std::string() + bytes[0] + "!") << level;
    EXPECT_EQ(copy.close(), 0);
    std::string expected = bytes;
    expected[1] = '!';
    EXPECT_EQ(content(library, L"member"), expected);
    ZoLibEntry entry;
    ASSERT_EQ(library.getEntry(L"member", entry), 0);
    EXPECT_EQ(entry.mode, level);
    EXPECT_EQ(CompareFileTime(&entry.created, &time), 0);
    ASSERT_EQ(add(library, L"member", "old", true), 0);
  }
  ZoFile late;
  ASSERT_EQ(library.getFile(late, L"late", ZoFile::kWrite), 0);
  ASSERT_EQ(library.close(), 0);
  EXPECT_EQ(late.write("x", 1), 0u);
  EXPECT_EQ(late.close(), 1);
}

ZO_TEST_CHILD(libraryWriter) {
  Attached attached;
  ZoLibrary library;
  parent.say(std::to_string(
      library.open(parent.argument(0).c_str(), ZoFile::kReadWrite, ZoFile::kOpenAlways)));
  while (const auto line = parent.hear()) {
    const ZoFileName source(parent.argument(1).c_str());
    parent.say(std::to_string(
        library.addFile(source, ZoFileName(std::wstring(line->begin(), line->end())))));
  }
  return 0;
}

TEST_F(LibraryTest, OneProcessWritesAndOthersRead) {
  put(source_, "bytes");
  ChildProcess writer(L"libraryWriter", {path_.fullName(), source_.fullName()});
  ASSERT_EQ(writer.hear(), "0");
  ZoLibrary reader, second;
  ASSERT_EQ(reader.open(path_), 0);
  for (const char* const member : {"one", "two"}) {
    writer.say(member);
    ASSERT_EQ(writer.hear(), "0");
    EXPECT_EQ(content(reader, std::wstring(member, member + 3)), "bytes");
  }
  // Any spelling of the path leads to the same lock.
  std::wstring spelled = std::wstring(path_.drive()) + path_.directory() + L".\\PARTS.lib";
  for (const wchar_t* const name :
       {path_.fullName(), static_cast<const wchar_t*>(spelled.c_str())}) {
    EXPECT_EQ(second.open(name, kReadWrite, ZoFile::kOpenExisting, 10), 1005);
    EXPECT_FALSE(second.isOpen());
  }
  writer.kill();
  ASSERT_EQ(openForWriting(second, 10), 0);
  EXPECT_EQ(names(second), (Names{L"one", L"two"}));
  // The same thread has the mutex already; the file's own lock tells its handles apart.
  ZoLibrary third;
  EXPECT_EQ(openForWriting(third, 10), 1005);
  ASSERT_EQ(second.renameFile(L"one", L"uno"), 0);
  EXPECT_EQ(names(reader), (Names{L"uno", L"two"}));
  ASSERT_EQ(second.deleteFile(L"uno"), 0);
  ASSERT_EQ(second.recoverFile(L"UNO"), 0);
  EXPECT_TRUE(reader.contains(L"uno"));
  EXPECT_EQ(second.close(), 0);
  ASSERT_EQ(openForWriting(third, 10), 0);
}
