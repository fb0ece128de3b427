// Copying and moving many files. (interrupted_test.cpp has failures within, remote_test.cpp
// servers.)
#include <zo/files/file.h>
#include <zo/files/file_transfer.h>

#include "files/file_fixture.h"

namespace zo::test {
namespace {

class FileTransfer : public FileTest {
 protected:
  FileTransfer() {
    std::filesystem::create_directories(folder_.path() / L"s\\sub");
    put(a, large);
    put(b, "b");
    put(c, "c");
  }
  const std::string large = std::string(600'000, 'a');
  const ZoFileName a = name(L"s\\a.dwg"), b = name(L"s\\sub\\b.dwg"), c = name(L"s\\sub\\c.txt");
  ZoFileTransfer transfer;
};

TEST_F(FileTransfer, CopiesTreesWithTheirTimes) {
  ZoFile source;
  const FILETIME then{123456789, 30'000'000};
  ASSERT_EQ(source.open(a, ZoFile::kReadWrite), 0);
  ASSERT_EQ(source.setLastWriteTime(then), 0);
  ASSERT_EQ(source.close(), 0);
  EXPECT_EQ(transfer.addTree(name(L"s\\*.dwg"), name(L"t")), 0);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), 0);
  EXPECT_EQ(listing(), (Names{L"s\\", L"s\\a.dwg", L"s\\sub\\", L"s\\sub\\b.dwg", L"s\\sub\\c.txt",
                              L"t\\", L"t\\a.dwg", L"t\\sub\\", L"t\\sub\\b.dwg"}));
  EXPECT_TRUE(bytesOf(name(L"t\\a.dwg")) == large);
  ASSERT_EQ(source.open(name(L"t\\a.dwg")), 0);
  EXPECT_EQ(source.lastWriteTime().dwLowDateTime, then.dwLowDateTime);
  EXPECT_EQ(source.close(), 0);
}

TEST_F(FileTransfer, ProgressComesToItsEndAndCancels) {
  for (unsigned int cancelAt = 1; cancelAt <= 7; ++cancelAt) {
    std::int64_t last = 0;
    unsigned int calls = 0;
    transfer.onProgress([&](const ZoFileTransfer::Progress& p) {
      EXPECT_TRUE(p.bytesDone >= last && p.bytes == 600'001 && p.files == 2);
      last = p.bytesDone;
      return ++calls < cancelAt;
    });
    static_cast<void>(fs().erase(name(L"t"), ZoFileSystem::kTree));  // of the round before
    transfer.clear();
    transfer.add(a, name(L"t\\a.dwg"));
    transfer.add(b, name(L"t\\sub\\b.dwg"));
    // Around both files, and twice within the large one.
    const unsigned int left = cancelAt <= 3 ? 2 : cancelAt <= 5 ? 1 : 0;
    EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), left == 2 ? 1 : left == 1 ? 4 : 0) << cancelAt;
    EXPECT_TRUE(bytesOf(name(L"t\\a.dwg")) == (left == 2 ? "(none)" : large)) << cancelAt;
    EXPECT_EQ(transfer.entries(), left);
    for (const std::wstring& entry : listing()) EXPECT_FALSE(entry.ends_with(L".tmp"));
    EXPECT_TRUE(cancelAt < 7 || last == 600'001);
  }
}

TEST_F(FileTransfer, WhatFailsIsReportedAndTheRestIsDone) {
  const ZoFileName missing = name(L"missing"), there = name(L"there"), to = name(L"t\\b");
  put(there, "old");
  transfer.add(missing, name(L"t\\missing"));
  transfer.add(c, there);
  transfer.add(b, to);
  transfer.refuseExisting(true);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), 4);
  ASSERT_EQ(transfer.failures().entries(), 2u);
  EXPECT_EQ(transfer.failures()[0].source, missing);
  EXPECT_EQ(transfer.failures()[0].reason.view(), messageOf(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(transfer.failures()[1].reason.view(), messageOf(ERROR_FILE_EXISTS));
  EXPECT_EQ(bytesOf(to) + bytesOf(there), "bold");
  transfer.refuseExisting(false);
  put(missing, "found");
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0) << "the rest";
  EXPECT_EQ(bytesOf(name(L"t\\missing")) + bytesOf(there), "foundc");
}

}  // namespace
}  // namespace zo::test
