// Copying and moving many files. (interrupted_test.cpp has failures within, remote_test.cpp
// servers.)
#include <zo/files/file.h>
#include <zo/files/file_transfer.h>

#include "file_io/file_fixture.h"
#include "support/faulty_files.h"

namespace zo::test {
namespace {

class FileTransfer : public FileTest {
 protected:
  FileTransfer() {
    std::filesystem::create_directories(std::filesystem::path(name(L"s\\sub").fullName()));
    put(name(L"s\\a.dwg"), large);
    put(name(L"s\\sub\\b.dwg"), "b");
    put(name(L"s\\sub\\c.txt"), "c");
  }
  // What is left beside the targets of a transfer that broke off.
  int temporaries() {
    int count = 0;
    for (const std::wstring& entry : listing()) count += entry.ends_with(L".tmp") ? 1 : 0;
    return count;
  }
  const std::string large = std::string(600'000, 'a');
};

TEST_F(FileTransfer, CopiesAndMovesTreesWithTheirTimesAndAttributes) {
  SetFileAttributesW(name(L"s\\sub\\b.dwg").fullName(), FILE_ATTRIBUTE_READONLY);
  ZoFile source;
  ASSERT_EQ(source.open(name(L"s\\a.dwg"), ZoFile::kReadWrite), 0);
  const FILETIME then{123456789, 30'000'000};
  ASSERT_EQ(source.setLastWriteTime(then), 0);
  source.close();

  ZoFileTransfer transfer;
  EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), 0) << "nothing to do";
  EXPECT_EQ(transfer.addTree(name(L"s\\*.dwg"), name(L"t")), 0);
  EXPECT_EQ(transfer.entries(), 2u);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), 0);
  EXPECT_EQ(transfer.entries(), 0u);
  EXPECT_EQ(listing(), (Names{L"s\\", L"s\\a.dwg", L"s\\sub\\", L"s\\sub\\b.dwg", L"s\\sub\\c.txt",
                              L"t\\", L"t\\a.dwg", L"t\\sub\\", L"t\\sub\\b.dwg"}));
  EXPECT_TRUE(bytesOf(name(L"t\\a.dwg")) == large);
  ZoFile target;
  ASSERT_EQ(target.open(name(L"t\\a.dwg")), 0);
  EXPECT_EQ(target.lastWriteTime().dwLowDateTime, then.dwLowDateTime);
  EXPECT_TRUE(fs().getAttributes(name(L"t\\sub\\b.dwg")) & FILE_ATTRIBUTE_READONLY);
  target.close();
  SetFileAttributesW(name(L"s\\sub\\b.dwg").fullName(), FILE_ATTRIBUTE_NORMAL);

  // Moving: to new places by renaming, onto what exists by replacing, to another volume by copying.
  put(name(L"s\\a.dwg"), "newer");
  transfer.add(name(L"s\\a.dwg"), name(L"t\\a.dwg"));
  transfer.add(name(L"s\\sub\\c.txt"), name(L"t\\new\\c.txt"));
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0);
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "move", .error = ERROR_NOT_SAME_DEVICE});
  transfer.add(name(L"s\\sub\\b.dwg"), name(L"u\\b.dwg"));
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0);
  EXPECT_EQ(bytesOf(name(L"t\\a.dwg")) + bytesOf(name(L"t\\new\\c.txt")), "newerc");
  EXPECT_EQ(bytesOf(name(L"u\\b.dwg")), "b");
  EXPECT_EQ(bytesOf(name(L"s\\sub\\b.dwg")) + bytesOf(name(L"s\\a.dwg")), "(none)(none)");
}

TEST_F(FileTransfer, ProgressComesToItsEndAndCancels) {
  ZoFileTransfer transfer;
  std::int64_t last = 0;
  unsigned int calls = 0;
  for (unsigned int cancelAt = 1; cancelAt <= 7; ++cancelAt) {
    last = calls = 0;
    transfer.onProgress([&](const ZoFileTransfer::Progress& p) {
      EXPECT_TRUE(p.bytesDone >= last && p.bytes == 600'001 && p.files == 2);
      last = p.bytesDone;
      return ++calls < cancelAt;
    });
    fs().erase(name(L"t"), ZoFileSystem::kTree);
    transfer.clear();
    transfer.add(name(L"s\\a.dwg"), name(L"t\\a.dwg"));
    transfer.add(name(L"s\\sub\\b.dwg"), name(L"t\\sub\\b.dwg"));
    // Around both files, and twice within the large one.
    const unsigned int left = cancelAt <= 3 ? 2 : cancelAt <= 5 ? 1 : 0;
    EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), left == 2 ? 1 : left == 1 ? 4 : 0) << cancelAt;
    EXPECT_EQ(transfer.wasCancelled(), cancelAt <= 6);
    EXPECT_EQ(transfer.failures().entries(), 0u) << "to be cancelled is no failure";
    EXPECT_TRUE(bytesOf(name(L"t\\a.dwg")) == (left == 2 ? "(none)" : large)) << cancelAt;
    EXPECT_EQ(temporaries(), 0);
    EXPECT_EQ(transfer.entries(), left);
  }
  EXPECT_EQ(last, 600'001);
  EXPECT_EQ(calls, 6u);
  transfer.add(name(L"s\\a.dwg"), name(L"t\\a.dwg"));
  transfer.onProgress([](const ZoFileTransfer::Progress&) -> bool { throw 1; });
  EXPECT_THROW(transfer.run(ZoFileTransfer::kCopy), int);
  transfer.onProgress(nullptr);
  EXPECT_EQ(transfer.entries(), 1u);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), 0) << "what was left of the last run";
}

TEST_F(FileTransfer, WhatFailsIsReportedAndTheRestIsDone) {
  ZoFileTransfer transfer;
  put(name(L"there"), "old");
  transfer.add(name(L"missing"), name(L"t\\missing"));
  transfer.add(name(L"s\\sub\\c.txt"), name(L"there"));
  transfer.add(name(L"s\\sub\\b.dwg"), name(L"t\\sub\\b.dwg"));
  transfer.refuseExisting(true);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), 4);
  ASSERT_EQ(transfer.failures().entries(), 2u);
  EXPECT_EQ(transfer.failures()[0].source, name(L"missing"));
  EXPECT_EQ(transfer.failures()[0].code, 1);
  EXPECT_EQ(transfer.failures()[0].reason.view(), messageOf(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(transfer.failures()[1].target, name(L"there"));
  EXPECT_EQ(transfer.failures()[1].reason.view(), messageOf(ERROR_FILE_EXISTS));
  EXPECT_EQ(bytesOf(name(L"t\\sub\\b.dwg")) + bytesOf(name(L"there")), "bold");
  transfer.refuseExisting(false);
  put(name(L"missing"), "found");
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0) << "the rest";
  EXPECT_EQ(bytesOf(name(L"t\\missing")) + bytesOf(name(L"there")), "foundc");
  EXPECT_EQ(transfer.failures().entries(), 0u);
}

}  // namespace
}  // namespace zo::test
