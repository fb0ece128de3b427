// Saving in one step. (kill_test.cpp has the killed processes.)
#include <zo/files/file_save.h>

#include "file_io/file_fixture.h"
#include "files/buffered_file.h"
#include "support/faulty_files.h"

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
  ZoFileSave save;
  EXPECT_EQ(save.commit(), 1) << "nothing is open";
  ASSERT_EQ(save.open(name(L"other")), 0);
  ASSERT_EQ(save.open(target), 0) << "cancels the other";
  std::FILE* const stream = save.file().getCFileHandle(false, true);
  ASSERT_NE(stream, nullptr);
  std::fputs("by a stream", stream);
  std::fclose(stream);
  EXPECT_EQ(bytesOf(target), "first");
  EXPECT_EQ(listing().size(), 2u) << "the temporary file is beside it";
  EXPECT_EQ(save.commit(), 0);
  EXPECT_EQ(bytesOf(target), "by a stream");
  EXPECT_EQ(save.commit(), 1) << "done with it";
  EXPECT_EQ(save.open(ZoFileName(L"ftp://host/f")), 3);
  EXPECT_EQ(save.open(name(L"missing\\f")), 1);
  ZoFileName below(L"f");
  below.setMacro(L"LIB", name(L"").fullName());
  EXPECT_EQ(saveTo(below, "below a macro"), 0);
  EXPECT_EQ(bytesOf(name(L"f")), "below a macro");
  EXPECT_EQ(listing(), (Names{L"f", L"\x44F.dwg"}));
}

TEST_F(FileSave, WhateverFailsTheOldFileStays) {
  const std::string old = "old", fresh(5000, 'n');
  const ZoFileName target = name(L"f");
  for (const Fault fault : {Fault::fail, Fault::shorten}) {
    int nth = 1;
    for (bool met = true; met; ++nth) {
      put(target, old);
      FaultyFiles files;
      files.arm({.fault = fault, .nth = nth});
      const int code = saveTo(target, fresh);
      met = files.met();
      files.arm({});
      // A short write is completed by the writer; some calls are not needed for success.
      EXPECT_TRUE(bytesOf(target) == (code ? old : fresh)) << nth;
      EXPECT_EQ(listing(), (Names{L"f"})) << nth;
      EXPECT_TRUE(met || code == 0);
    }
    EXPECT_GT(nth, 6);
  }
  // A target that is made read-only, is in use, or is erased in between.
  put(target, old);
  ZoFileSave save;
  ASSERT_EQ(save.open(target), 0);
  SetFileAttributesW(target.fullName(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(save.commit(), 1);
  expectError(ERROR_ACCESS_DENIED);
  SetFileAttributesW(target.fullName(), FILE_ATTRIBUTE_NORMAL);
  ASSERT_EQ(save.open(target), 0);
  ZoFile user;
  ASSERT_EQ(user.open(target), 0);
  EXPECT_EQ(save.commit(), 1);
  EXPECT_EQ(bytesOf(target), old);
  EXPECT_EQ(user.close(), 0);
  ASSERT_EQ(save.open(target), 0);
  ASSERT_TRUE(DeleteFileW(target.fullName()));
  EXPECT_EQ(save.commit(), 0);
  EXPECT_EQ(listing(), (Names{L"f"}));
}

}  // namespace
}  // namespace zo::test
