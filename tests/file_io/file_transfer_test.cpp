// Copying and moving many files.
#include <zo/files/file.h>
#include <zo/files/file_transfer.h>

#include "file_io/faulty_files.h"
#include "file_io/file_fixture.h"

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
  void expectSources(bool there) {
    EXPECT_TRUE(bytesOf(name(L"s\\a.dwg")) == (there ? large : "(none)"));
    EXPECT_EQ(bytesOf(name(L"s\\sub\\b.dwg")), there ? "b" : "(none)");
  }
  void expectTargets() {
    EXPECT_TRUE(bytesOf(name(L"t\\a.dwg")) == large);
    EXPECT_EQ(bytesOf(name(L"t\\sub\\b.dwg")), "b");
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
  expectSources(true);
  expectTargets();
  EXPECT_EQ(listing(), (Names{L"s\\", L"s\\a.dwg", L"s\\sub\\", L"s\\sub\\b.dwg", L"s\\sub\\c.txt",
                              L"t\\", L"t\\a.dwg", L"t\\sub\\", L"t\\sub\\b.dwg"}));
  ZoFile target;
  ASSERT_EQ(target.open(name(L"t\\a.dwg")), 0);
  EXPECT_EQ(target.lastWriteTime().dwLowDateTime, then.dwLowDateTime);
  EXPECT_NE(ZoSystem::fileSystem().getAttributes(name(L"t\\sub\\b.dwg")) & FILE_ATTRIBUTE_READONLY,
            0u);
  target.close();
  SetFileAttributesW(name(L"s\\sub\\b.dwg").fullName(), FILE_ATTRIBUTE_NORMAL);

  // Moving: to new places by renaming, onto what exists by replacing, to another volume by copying.
  put(name(L"s\\a.dwg"), "newer");
  transfer.add(name(L"s\\a.dwg"), name(L"t\\a.dwg"));
  transfer.add(name(L"s\\sub\\c.txt"), name(L"t\\new\\c.txt"));
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0);
  EXPECT_EQ(bytesOf(name(L"t\\a.dwg")), "newer");
  EXPECT_EQ(bytesOf(name(L"t\\new\\c.txt")), "c");
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "move", .error = ERROR_NOT_SAME_DEVICE});
  transfer.add(name(L"s\\sub\\b.dwg"), name(L"u\\b.dwg"));
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0);
  EXPECT_EQ(bytesOf(name(L"u\\b.dwg")), "b");
  EXPECT_EQ(bytesOf(name(L"s\\sub\\b.dwg")) + bytesOf(name(L"s\\a.dwg")), "(none)(none)");
}

TEST_F(FileTransfer, ProgressComesToItsEndAndCancels) {
  ZoFileTransfer transfer;
  std::int64_t last = 0;
  unsigned int calls = 0, cancelAt = ~0U;
  transfer.onProgress([&](const ZoFileTransfer::Progress& p) {
    EXPECT_GE(p.bytesDone, last);
    EXPECT_LE(p.bytesDone, p.bytes);
    EXPECT_EQ(p.bytes, 600'001);
    EXPECT_EQ(p.files, 2u);
    last = p.bytesDone;
    return ++calls < cancelAt;
  });
  const auto run = [&] {
    last = 0;
    calls = 0;
    transfer.clear();
    transfer.add(name(L"s\\a.dwg"), name(L"t\\a.dwg"));
    transfer.add(name(L"s\\sub\\b.dwg"), name(L"t\\sub\\b.dwg"));
    return transfer.run(ZoFileTransfer::kCopy);
  };
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(last, 600'001);
  EXPECT_EQ(calls, 6u) << "around both files, and twice within the large one";
  for (cancelAt = 1; cancelAt <= 6; ++cancelAt) {
    ZoSystem::fileSystem().erase(name(L"t"), ZoFileSystem::kTree);
    const int code = run();
    EXPECT_TRUE(transfer.wasCancelled()) << cancelAt;
    EXPECT_EQ(code, cancelAt <= 3 ? 1 : cancelAt <= 5 ? 4 : 0) << cancelAt;
    EXPECT_EQ(transfer.failures().entries(), 0u) << "to be cancelled is no failure";
    EXPECT_TRUE(bytesOf(name(L"t\\a.dwg")) == (cancelAt <= 3 ? "(none)" : large)) << cancelAt;
    EXPECT_EQ(temporaries(), 0);
    EXPECT_EQ(transfer.entries(), cancelAt <= 3 ? 2u : cancelAt <= 5 ? 1u : 0u);
  }
  transfer.onProgress(nullptr);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kCopy), 0) << "what was left of the last run";
  expectTargets();
}

TEST_F(FileTransfer, WhatFailsIsReportedAndTheRestIsDone) {
  ZoFileTransfer transfer;
  put(name(L"there"), "old");
  transfer.add(name(L"missing"), name(L"t\\missing"));
  transfer.add(name(L"s\\a.dwg"), name(L"t\\a.dwg"));
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
  expectTargets();
  EXPECT_EQ(bytesOf(name(L"there")), "old");
  transfer.refuseExisting(false);
  put(name(L"missing"), "found");
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0) << "the rest";
  EXPECT_EQ(bytesOf(name(L"t\\missing")) + bytesOf(name(L"there")), "foundc");
  EXPECT_EQ(transfer.failures().entries(), 0u);
}

TEST_F(FileTransfer, WhicheverCallFailsNoFileIsLost) {
  FaultyFiles files;
  for (const auto mode : {ZoFileTransfer::kCopy, ZoFileTransfer::kMove}) {
    for (const bool there : {false, true}) {
      for (int nth = 1;; ++nth) {
        ASSERT_LT(nth, 100);
        put(name(L"s\\a.dwg"), large);
        DeleteFileW(name(L"t").fullName());
        if (there) put(name(L"t"), "old");
        ZoFileTransfer transfer;
        transfer.add(name(L"s\\a.dwg"), name(L"t"));
        files.arm({.fault = Fault::fail, .nth = nth});
        const int code = transfer.run(mode);
        const bool met = files.met();
        files.arm({});
        const std::string source = bytesOf(name(L"s\\a.dwg")), target = bytesOf(name(L"t"));
        EXPECT_TRUE(target == large || target == (there ? "old" : "(none)")) << nth;
        EXPECT_TRUE(source == large || target == large) << nth;
        EXPECT_EQ(code == 0, transfer.failures().entries() == 0) << nth;
        if (code == 0) {
          EXPECT_TRUE(target == large && (source == large) == (mode == ZoFileTransfer::kCopy));
        }
        EXPECT_EQ(temporaries(), 0) << nth;
        if (!met) break;
      }
    }
  }
}

}  // namespace
}  // namespace zo::test
