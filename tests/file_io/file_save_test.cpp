// Saving in one step.
#include <zo/files/file_save.h>

#include <cstdio>

#include "file_io/faulty_files.h"
#include "file_io/file_fixture.h"
#include "files/buffered_file.h"
#include "support/child_process.h"

namespace zo::test {
namespace {

using FileSave = FileTest;

// Saves as a client would, looking only at the end.
int saveTo(const ZoFileName& target, const std::string& content) {
  ZoFileSave save;
  if (const int code = save.open(target)) return code;
  FileWriter writer(save.file(), 1000);
  writer.write(content.data(), content.size());
  writer.flush();
  return save.commit();
}

TEST_F(FileSave, TheTargetIsReplacedOnlyByACommit) {
  const ZoFileName target = name(L"\x44F.dwg");
  EXPECT_EQ(saveTo(target, "first"), 0);
  EXPECT_EQ(bytesOf(target), "first");
  {
    ZoFileSave save;
    ASSERT_EQ(save.open(target), 0);
    EXPECT_EQ(save.file().write("second", 6), 6u);
    EXPECT_EQ(bytesOf(target), "first");
    EXPECT_EQ(listing().size(), 2u) << "the temporary file is beside it";
  }
  EXPECT_EQ(bytesOf(target), "first") << "never committed";
  EXPECT_EQ(listing().size(), 1u);

  ZoFileSave save;
  EXPECT_EQ(save.commit(), 1) << "nothing is open";
  ASSERT_EQ(save.open(name(L"other")), 0);
  ASSERT_EQ(save.open(target), 0) << "cancels the other";
  std::FILE* const stream = save.file().getCFileHandle(false, true);
  ASSERT_NE(stream, nullptr);
  std::fputs("by a stream", stream);
  std::fclose(stream);
  EXPECT_EQ(save.commit(), 0);
  EXPECT_EQ(bytesOf(target), "by a stream");
  EXPECT_EQ(save.commit(), 1) << "done with it";
  EXPECT_EQ(listing().size(), 1u);
  EXPECT_EQ(save.open(ZoFileName(L"ftp://host/f")), 3);
  EXPECT_EQ(save.open(name(L"missing\\f")), 1);
}

TEST_F(FileSave, WhateverFailsTheOldFileStays) {
  const std::string old = "old", fresh(5000, 'n');
  for (const Fault fault : {Fault::fail, Fault::shorten}) {
    for (int nth = 1;; ++nth) {
      put(name(L"f"), old);
      FaultyFiles files;
      files.arm({.fault = fault, .nth = nth});
      const int code = saveTo(name(L"f"), fresh);
      const bool met = files.met();
      files.arm({});
      // A short write is completed by the writer; some calls are not needed for success.
      EXPECT_TRUE(bytesOf(name(L"f")) == (code ? old : fresh)) << nth;
      EXPECT_EQ(listing(), (Names{L"f"})) << nth;
      if (!met) {
        EXPECT_EQ(code, 0);
        EXPECT_GT(nth, 6) << "it was a failure several times";
        break;
      }
    }
  }
  // A target that was made read-only, or is in use, in between.
  put(name(L"f"), old);
  ZoFileSave save;
  ASSERT_EQ(save.open(name(L"f")), 0);
  SetFileAttributesW(name(L"f").fullName(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(save.commit(), 1);
  EXPECT_EQ(ZoSystem::fileSystem().errorTxt().view(), messageOf(ERROR_ACCESS_DENIED));
  SetFileAttributesW(name(L"f").fullName(), FILE_ATTRIBUTE_NORMAL);
  ASSERT_EQ(save.open(name(L"f")), 0);
  ZoFile user;
  ASSERT_EQ(user.open(name(L"f")), 0);
  EXPECT_EQ(save.commit(), 1);
  EXPECT_EQ(bytesOf(name(L"f")), old);
  EXPECT_EQ(user.close(), 0);
  // One that was erased in between comes back.
  ASSERT_EQ(save.open(name(L"f")), 0);
  ASSERT_TRUE(DeleteFileW(name(L"f").fullName()));
  EXPECT_EQ(save.commit(), 0);
  EXPECT_EQ(listing(), (Names{L"f"}));
}

ZO_TEST_CHILD(killedWhileSaving) {
  const Attached attached;
  FaultyFiles files;
  files.arm({.fault = Fault::stop, .nth = std::stoi(parent.argument(1))});
  return saveTo(ZoFileName(parent.argument(0).c_str()), std::string(1500, 'n'));
}

TEST_F(FileSave, AKilledProcessLeavesTheOldFileOrTheNewOne) {
  const std::string fresh(1500, 'n');
  int nth = 1, code = kStopped;
  for (; code == kStopped; ++nth) {
    ASSERT_LT(nth, 30);
    put(name(L"f"), "old");
    ChildProcess child(L"killedWhileSaving", {name(L"f").fullName(), std::to_wstring(nth)});
    code = child.wait();
    EXPECT_TRUE(bytesOf(name(L"f")) == (code ? "old" : fresh)) << nth << ' ' << code;
  }
  EXPECT_EQ(code, 0);
  EXPECT_GT(nth, 5);
}

}  // namespace
}  // namespace zo::test
