// Saving in one step. (interrupted_test.cpp has failures within.)
#include <zo/files/file_save.h>

#include "files/file_fixture.h"

namespace zo::test {
namespace {

using FileSave = FileTest;

TEST_F(FileSave, TheTargetIsReplacedOnlyByACommit) {
  const ZoFileName target = name(L"\x44F.dwg");
  put(target, "first");
  ZoFileSave save;
  ASSERT_EQ(save.open(name(L"other")), 0);
  ASSERT_EQ(save.open(target), 0) << "cancels the other";
  std::FILE* const stream = save.file().getCFileHandle(false, true);
  ASSERT_NE(stream, nullptr);
  std::fputs("by a stream", stream);
  std::fclose(stream);
  EXPECT_EQ(bytesOf(target), "first");
  EXPECT_EQ(save.commit(), 0);
  EXPECT_EQ(bytesOf(target), "by a stream");
  EXPECT_EQ(save.commit(), 1) << "done with it";
  ASSERT_EQ(save.open(target), 0);
  EXPECT_EQ(save.file().write("half", 4), 4u);
  save.file().cancel();
  EXPECT_EQ(save.commit(), 1) << "cancelled";
  EXPECT_EQ(bytesOf(target), "by a stream");
  EXPECT_EQ(listing(), (Names{L"\x44F.dwg"}));
}

TEST_F(FileSave, WhatHappensToTheTargetMeanwhileIsMet) {
  const ZoFileName target = name(L"f");
  put(target, "old");
  ZoFileSave save;
  ASSERT_EQ(save.open(target), 0);
  SetFileAttributesW(target.fullName(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(save.commit(), 1);
  expectError(ERROR_ACCESS_DENIED);
  SetFileAttributesW(target.fullName(), FILE_ATTRIBUTE_NORMAL);
  ASSERT_EQ(save.open(target), 0);
  ZoFile user;
  ASSERT_EQ(user.open(target), 0);
  EXPECT_EQ(save.commit(), 1) << "in use";
  EXPECT_EQ(bytesOf(target), "old");
  EXPECT_EQ(user.close(), 0);
  ASSERT_EQ(save.open(target), 0);
  ASSERT_TRUE(DeleteFileW(target.fullName()));
  EXPECT_EQ(save.commit(), 0);
  EXPECT_EQ(listing(), (Names{L"f"}));
}

// As on a full disk: the caller does not look.
TEST_F(FileSave, AWriteThatCameShortIsMadeWholeOrFailed) {
  const ZoFileName target = name(L"f");
  put(target, "old");
  FaultyFiles files;
  ZoFileSave save;
  for (const bool isFull : {true, false}) {
    ASSERT_EQ(save.open(target), 0);
    files.arm({.fault = Fault::shorten, .call = "write", .forEver = isFull});
    EXPECT_EQ(save.file().write("complete", 8), isFull ? 7u : 8u);
    files.arm({});
    EXPECT_EQ(save.commit(), isFull ? 1 : 0);
    EXPECT_EQ(bytesOf(target), isFull ? "old" : "complete");
    EXPECT_EQ(listing(), (Names{L"f"}));
  }
}

}  // namespace
}  // namespace zo::test
