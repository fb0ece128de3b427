// File objects on real files. (reports_test.cpp has what the platform fails to do.)
#include <zo/files/file.h>

#include <utility>

#include "files/file_fixture.h"
#include "support/open_handles.h"

#include <winioctl.h>

namespace zo::test {
namespace {

using FileObject = FileTest;
constexpr std::int64_t kGiB = std::int64_t{1} << 30;
constexpr int kShareAll = ZoFile::kShareRead | ZoFile::kShareWrite | ZoFile::kShareDelete;

std::string readAll(ZoFile& file) {
  std::string bytes(100, '?');
  bytes.resize(file.read(bytes.data(), 100));
  return bytes;
}

TEST_F(FileObject, TheModeDecidesByWhatExists) {
  struct Case {
    ZoFile::CreationMode mode;
    const char *absentAfter, *presentAfter;
    int ofAbsent = 0, ofPresent = 0;
  };
  for (const Case& c :
       {Case{ZoFile::kCreateNew, "", "old", 0, 1}, Case{ZoFile::kCreateAlways, "", ""},
        Case{ZoFile::kOpenExisting, "(none)", "old", 1}, Case{ZoFile::kOpenAlways, "", "old"},
        Case{ZoFile::kTruncateExisting, "(none)", "", 1}}) {
    const ZoFileName absent = name(L"absent" + std::to_wstring(c.mode)), present = name(L"present");
    put(present, "old");
    ZoFile file;
    EXPECT_EQ(file.open(absent, ZoFile::kWrite, c.mode), c.ofAbsent) << c.mode;
    EXPECT_EQ(file.open(present, ZoFile::kWrite, c.mode), c.ofPresent) << c.mode;
    EXPECT_EQ(file.close(), 0);
    EXPECT_EQ(bytesOf(absent), c.absentAfter) << c.mode;
    EXPECT_EQ(bytesOf(present), c.presentAfter) << c.mode;
  }
}

TEST_F(FileObject, SizesAndPositionsHave64Bits) {
  FaultyFiles files;
  ZoFile file;
  ASSERT_EQ(file.open(name(L"large"), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  EXPECT_EQ(files.flagsOfCreate(), DWORD{FILE_FLAG_RANDOM_ACCESS}) << "as it is read and written";
  DWORD returned;
  DeviceIoControl(file.handle(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
  // Among them the position whose low half is what the platform also says for a failure.
  for (const std::int64_t at : {std::int64_t{0xFFFFFFFF}, 4 * kGiB + 10, 5 * kGiB}) {
    EXPECT_EQ(file.seek(at), at);
    EXPECT_EQ(file.write("zo", 2), 2u);
    EXPECT_EQ(file.size(), at + 2);
  }
  EXPECT_EQ(file.seek(-kGiB + 8, ZoFile::kEnd), 4 * kGiB + 10);
  char read[2];
  EXPECT_EQ(file.read(read, 2), 2u);
  EXPECT_EQ(std::string(read, 2), "zo");
  EXPECT_EQ(file.seek(-6 * kGiB, ZoFile::kEnd), -1);
  EXPECT_EQ(file.currentPos(), 4 * kGiB + 12) << "a refused seek moves nothing";
}

TEST_F(FileObject, LocksHoldAgainstOthersAtAnyPosition) {
  ZoFile ours, theirs;
  for (ZoFile* file : {&ours, &theirs})
    ASSERT_EQ(file->open(name(L"f"), ZoFile::kReadWrite, ZoFile::kOpenAlways, kShareAll), 0);
  for (const std::int64_t start : {std::int64_t{0}, 5 * kGiB}) {
    EXPECT_EQ(ours.lockRange(start, 10), 0);
    EXPECT_EQ(theirs.lockRange(start + 9, 10), 1) << "one byte of it";
    expectError(ERROR_LOCK_VIOLATION);
    EXPECT_EQ(theirs.lockRange(start + 10, 10), 0) << "behind it";
    EXPECT_EQ(ours.unlockRange(start, 10), 0);
    EXPECT_EQ(theirs.lockRange(start, 10), 0);
  }
}

TEST_F(FileObject, TemporaryFilesAreNewAndNamedAfterTheWish) {
  const ZoFileName wish = name(L"part.dwg");
  put(wish, "old");
  ZoFile file;
  ZoFileName made = wish, homeless;
  EXPECT_EQ(file.createTemp(made, ZoFile::kReadWrite, ZoFile::kTruncateExisting), 1);
  // A name that somebody takes in the last moment is left alone, and the next one tried.
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "create", .error = ERROR_FILE_EXISTS});
  ASSERT_EQ(
      file.createTemp(made, ZoFile::kReadWrite, ZoFile::kCreateAlways, 0, ZoFile::kDeleteOnClose),
      0);
  EXPECT_EQ(files.calls().size(), 2u);
  EXPECT_TRUE(std::wstring_view(made.fileNameExt()).starts_with(L"part"));
  EXPECT_EQ(listing(), (Names{L"part.dwg", made.fileNameExt()}));
  EXPECT_EQ(file.close(), 0);
  EXPECT_EQ(listing(), (Names{L"part.dwg"})) << "deleted on close";
  EXPECT_EQ(bytesOf(wish), "old");
  files.arm({.fault = Fault::fail, .call = "tempFolder"});
  EXPECT_EQ(file.createTemp(homeless), 1) << "not just anywhere";
}

TEST_F(FileObject, AStreamTakesTheFileOver) {
  constexpr int kRead = ZoFile::kRead, kBoth = ZoFile::kReadWrite;
  struct Case {
    const wchar_t* mode;
    int access;
    const char* reads;  // null: refused
  };
  for (const Case& c : {Case{L"rt", kRead, "b\nc"}, Case{L"rb", kBoth, "b\r\n"},
                        Case{L"rt+", kBoth, "b\nc"}, Case{L"", kRead, nullptr},
                        Case{L"x", kRead, nullptr}, Case{L"r,ccs=UTF-8", kRead, nullptr}}) {
    SCOPED_TRACE(std::wstring(c.mode));
    put(name(L"f"), "ab\r\ncd");
    ZoFile file;
    ASSERT_EQ(file.open(name(L"f"), c.access), 0);
    ASSERT_EQ(file.seek(1), 1);
    EXPECT_TRUE(c.access != kRead || !file.getCFileHandle(false, true)) << "not to write";
    std::FILE* const stream = file.getCFileHandle(c.mode);
    ASSERT_EQ(stream != nullptr, c.reads != nullptr);
    EXPECT_EQ(file.isOpen(), !stream);
    EXPECT_EQ(readAll(file), stream ? "" : "b\r\ncd") << "untouched if refused";
    if (!stream) continue;
    char line[10] = {};
    EXPECT_EQ(std::fread(line, 1, 3, stream), 3u);
    EXPECT_STREQ(line, c.reads);
    std::fclose(stream);
    EXPECT_EQ(file.open(name(L"f"), kRead, ZoFile::kOpenExisting, 0), 0) << "closed";
  }
}

TEST_F(FileObject, CopiesShareThePositionAndMovesTakeTheFile) {
  put(name(L"f"), "abcdef");
  const unsigned long before = openHandles();
  {
    ZoFile file;
    ASSERT_EQ(file.open(name(L"f"), ZoFile::kRead, ZoFile::kOpenExisting, kShareAll), 0);
    ZoFile copy(file);
    char c;
    EXPECT_EQ(copy.read(&c, 1), 1u);
    EXPECT_EQ(file.currentPos(), 1) << "one position";
    EXPECT_EQ(file.close(), 0);
    EXPECT_EQ(readAll(copy), "bcdef") << "closed when both are";
    ZoFile writer(copy, static_cast<unsigned int>(ZoFile::kWrite));
    EXPECT_EQ(writer.write("X", 1), 1u) << "at a position of its own";
    ZoFile moved(std::move(copy));
    EXPECT_EQ(copy.open(name(L"f"), ZoFile::kRead, ZoFile::kOpenExisting, kShareAll), 0);
    moved = std::move(copy);
    EXPECT_FALSE(copy.isOpen()) << "nor has it what the other had";
    EXPECT_EQ(readAll(moved), "Xbcdef");
    // A copy that asks for more than the sharing allows has no file.
    ASSERT_EQ(file.open(name(L"g"), ZoFile::kWrite, ZoFile::kCreateNew, ZoFile::kShareNone), 0);
    EXPECT_FALSE(ZoFile(file, static_cast<unsigned int>(ZoFile::kRead)).isOpen());
  }
  EXPECT_EQ(openHandles(), before);
}

TEST_F(FileObject, LongForeignAndAliasedNamesWork) {
  std::wstring deep = L"\x44F\x4E00";
  while (name(deep).fullNameSize() < 400) deep += L"\\" + std::wstring(60, L'd');
  const ZoFileName local = name(deep + L"\\\xFC.bin");
  EXPECT_EQ(fs().createDirectory(name(deep)), 0);
  ZoFile file;
  ASSERT_EQ(file.open(local, ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  EXPECT_EQ(file.write("deep", 4), 4u);
  ZoFileName url(L"ftp://host/part.dwg");
  url.setLocalAlias(local);
  EXPECT_EQ(file.open(url), 0);
  EXPECT_EQ(readAll(file), "deep");
}

}  // namespace
}  // namespace zo::test
