// Archives over files: what they hold back is lost to nobody, whoever goes first.
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

#include "persist/archive_values.h"
#include "support/faulty_files.h"
#include "support/file_bytes.h"
#include "support/printers.h"
#include "support/temp_folder.h"
#include "system/attached.h"

namespace zo::test {
namespace {

class FileArchive : public testing::Test {
 protected:
  ZoFileName name(const wchar_t* file) const { return ZoFileName(folder_.path() / file); }
  std::unique_ptr<ZoFile> created() const {
    auto file = std::make_unique<ZoFile>();
    EXPECT_EQ(file->open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateAlways), 0);
    return file;
  }
  std::string bytes(const wchar_t* file = L"f") const { return fileBytes(folder_.path() / file); }

 private:
  Attached attached_;  // failures of files are reported to a service
  TempFolder folder_;
};

TEST_F(FileArchive, GoesThroughItsBufferAndGivesTheFileBackInPlace) {
  const ZoString longText(std::wstring(100000, L'x'));
  PlainArchive whole;
  writeAll(whole);
  const auto opened = created();
  ZoFile& file = *opened;
  ASSERT_EQ(file.write("head", 4), 4U);
  {
    ZoFileWriteArchive archive(file);
    for (int i = 0; i < 100; ++i) writeAll(archive);
    archive << longText;
    archive.flush();
    EXPECT_EQ(file.currentPos(), static_cast<std::int64_t>(4 + 100 * whole.bytes.size() + 200004));
  }
  ASSERT_EQ(file.write("tail", 4), 4U);
  EXPECT_EQ(file.seek(4), 4);
  {
    ZoFileReadArchive archive(file);
    for (int i = 0; i < 100 && !HasFailure(); ++i) expectAll(archive);
    ZoString text;
    archive >> text;
    EXPECT_TRUE(text == longText);
  }
  char tail[4];
  EXPECT_EQ(file.read(tail, 4), 4U);
  EXPECT_EQ(std::string_view(tail, 4), "tail");

  FaultyFiles faulty;
  faulty.arm({.fault = Fault::fail, .call = "read"});
  EXPECT_EQ(file.seek(0), 0);
  ZoFileReadArchive unreadable(file);
  EXPECT_EQ(thrown([&] { unreadable.readBin(tail, 4); }), L"0 The archive's file cannot be read");
  faulty.arm({.fault = Fault::fail, .call = "write"});
  ZoFileWriteArchive unwritable(file);
  unwritable.write(1, L"");
  EXPECT_EQ(thrown([&] { unwritable.flush(); }), L"0 The archive's file cannot be written");
}

TEST_F(FileArchive, SharesThePositionOfItsFileWithAllOthers) {
  const auto file = created();
  ZoFileWriteArchive one(*file), other(*file);
  one << 1;
  EXPECT_EQ(file->write("tail", 4), 4U);
  one << 2;
  other << 3;
  one << 4;
  EXPECT_EQ(file->size(), 20);
  ZoFile copy(*file);
  EXPECT_EQ(copy.currentPos(), 20);

  ZoFileReadArchive from(*file);
  int number = 0;
  char tail[5] = {};
  EXPECT_EQ(file->seek(0), 0);
  from >> number;
  EXPECT_EQ(number, 1);
  EXPECT_EQ(file->read(tail, 4), 4U);
  EXPECT_STREQ(tail, "tail");
  one << 7;  // in the place of the 2
  from >> number;
  EXPECT_EQ(number, 3);
  EXPECT_EQ(file->currentPos(), 16);
  EXPECT_EQ(from.offset(), 8U);
  EXPECT_EQ(one.offset(), 16U);
  EXPECT_EQ(file->seek(8), 8);
  from >> number;
  EXPECT_EQ(number, 7);
}

// Each way in which a file ends, with an archive that holds four bytes.
TEST_F(FileArchive, EndsWithItsFileAndLosesNothing) {
  using Owner = std::unique_ptr<ZoFile>;
  void (*const endings[])(Owner& file, ZoFileName other) = {
      [](Owner& file, ZoFileName) { EXPECT_EQ(file->close(), 0); },
      [](Owner& file, ZoFileName) { EXPECT_EQ(file->setImpObj(nullptr), 0); },
      [](Owner& file, ZoFileName) { file->cancel(); },  // a plain file stays as it was written
      [](Owner& file, ZoFileName) { file.reset(); },
      [](Owner& file, ZoFileName) { *file = ZoFile(); },
      [](Owner& file, ZoFileName) { EXPECT_EQ(ZoFile(std::move(*file)).close(), 0); },
      [](Owner& file, ZoFileName) { CloseHandle(file->handle(true)); },
      [](Owner& file, ZoFileName) { std::fclose(file->getCFileHandle(false, true)); },
      [](Owner& file, ZoFileName other) {
        EXPECT_EQ(file->open(other, ZoFile::kReadWrite, ZoFile::kCreateAlways), 0);
      },
      [](Owner& file, ZoFileName other) {
        EXPECT_EQ(file->createTemp(other), 0);
        EXPECT_EQ(file->close(), 0);
        DeleteFileW(other.fullName());
      },
  };
  for (const auto& ending : endings) {
    SCOPED_TRACE(&ending - endings);
    auto file = created();
    ZoFileWriteArchive to(*file);
    ZoFileReadArchive from(*file);
    to << 1 << 2;
    EXPECT_EQ(file->seek(0), 0);
    int number = 0;
    from >> number;
    to << 3;
    ending(file, name(L"other"));
    EXPECT_EQ(bytes(), std::string("\1\0\0\0\3\0\0\0", 8));
    EXPECT_EQ(thrown([&] { to << 4; }), L"12 The archive's file is closed");
    EXPECT_EQ(thrown([&] { from >> number; }), L"4 The archive's file is closed");
    EXPECT_EQ(thrown([&] { to.flush(); }), L"") << "nothing was lost";
  }
  EXPECT_EQ(bytes(L"other"), "");
}

TEST_F(FileArchive, IsWrittenByACommitAndDroppedWithoutOne) {
  for (const bool toDisk : {true, false}) {
    auto save = std::make_unique<ZoFileSave>();
    ASSERT_EQ(save->open(name(L"f")), 0);
    ZoFileWriteArchive archive(save->file());
    archive << toDisk;
    EXPECT_EQ(save->commit(toDisk), 0);
    EXPECT_EQ(bytes(), std::string(1, toDisk ? 1 : 0));
    EXPECT_EQ(thrown([&] { archive << 4; }), L"1 The archive's file is closed");

    ASSERT_EQ(save->open(name(L"f")), 0);
    ZoFileWriteArchive dropped(save->file());
    dropped << 4;
    save.reset();
    EXPECT_EQ(bytes(), std::string(1, toDisk ? 1 : 0));
    EXPECT_EQ(thrown([&] { dropped << 4; }), L"0 The archive's file is closed");
  }
}

TEST_F(FileArchive, IsAddedToALibraryWholeOrNotAtAll) {
  FaultyFiles faulty;
  ZoLibrary library;
  ASSERT_EQ(library.open(name(L"l"), ZoFile::kReadWrite, ZoFile::kOpenAlways), 0);
  for (const bool fails : {false, true}) {
    ZoFile file;
    ASSERT_EQ(library.getFile(file, L"m", ZoFile::kWrite), 0);
    ZoFileWriteArchive to(file);
    to << 1 << (fails ? L"bad" : L"good");
    if (fails) faulty.arm({.fault = Fault::fail, .call = "write"});
    EXPECT_EQ(file.close() != 0, fails);
    ASSERT_EQ(library.getFile(file, L"m"), 0);
    ZoFileReadArchive from(file);
    int number = 0;
    ZoString text;
    from >> number >> text;
    EXPECT_EQ(text, L"good");
  }
}

// What cannot be written fails what asked for it, and is never passed over in silence.
TEST_F(FileArchive, FailuresReachWhoeverClosesTheFile) {
  FaultyFiles faulty;
  const FaultPlan full{.fault = Fault::fail, .call = "write", .forEver = true};
  const auto file = created();
  {
    ZoFileWriteArchive archive(*file);
    archive << 1;
    faulty.arm(full);
    EXPECT_EQ(file->close(), 1);
    EXPECT_EQ(thrown([&] { archive << 2; }), L"0 The archive's file cannot be written");
  }
  *file = std::move(*created());
  ZoFileWriteArchive(*file).write(1, L"");  // tells nobody
  EXPECT_EQ(file->currentPos(), -1);
  faulty.arm({});
  EXPECT_EQ(file->write("x", 1), 0U) << "behind what is missing";
  EXPECT_EQ(file->close(), 1);
  EXPECT_EQ(file->close(), 0);
  EXPECT_EQ(file->open(name(L"f"), ZoFile::kReadWrite), 0);
  {
    ZoFileWriteArchive archive(*file);
    archive << 1;
    faulty.arm(full);
    EXPECT_NE(thrown([&] { archive.flush(); }), L"");
  }
  EXPECT_EQ(file->close(), 0) << "that was told";

  faulty.arm({});
  ZoFileSave save;
  ASSERT_EQ(save.open(name(L"f")), 0);
  ZoFileWriteArchive archive(save.file());
  archive << 1;
  faulty.arm(full);
  EXPECT_EQ(save.commit(false), 1);
  EXPECT_EQ(bytes(), "");
}

}  // namespace
}  // namespace zo::test
