// The file-system service on real files and folders. (interrupted_test.cpp has failures within,
// reports_test.cpp what the platform fails to do.)
#include <zo/files/file.h>
#include <zo/files/file_transfer.h>

#include <functional>

#include "files/file_fixture.h"
#include "support/slots.h"

namespace zo::test {
namespace {

class FileSystem : public FileTest {
 protected:
  void folder(const std::wstring& relative) {
    std::filesystem::create_directories(folder_.path() / relative);
  }
};

TEST_F(FileSystem, WhatIsRefusedChangesNothing) {
  folder(L"dir\\sub");
  put(name(L"from"), "new ");
  put(name(L"to"), "old ");
  put(name(L"fixed"), "fixed");
  ASSERT_EQ(fs().subSetAttributes(name(L"fixed"), FILE_ATTRIBUTE_READONLY), 0);
  const ZoFileName from = name(L"from"), to = name(L"to"), dir = name(L"dir"),
                   missing = name(L"missing"), url(L"ftp://host/f");
  const FaultPlan otherVolume{.fault = Fault::fail, .call = "move", .error = ERROR_NOT_SAME_DEVICE};
  FaultyFiles files;
  struct Case {
    std::function<int()> run;
    int result = 1;
    DWORD error = 0;  // 0: not looked at
  };
  const Case cases[] = {
      {[&] { return fs().createDirectory(dir); }, 1, ERROR_ALREADY_EXISTS},
      {[&] { return fs().copy(from, to, true); }, 1, ERROR_FILE_EXISTS},
      {[&] { return fs().copy(from, name(L"fixed")); }, 1, ERROR_ACCESS_DENIED},
      {[&] { return fs().copy(from, name(L"missing\\f")); }},
      {[&] { return fs().append(from, missing, true); }, 1, ERROR_FILE_NOT_FOUND},
      {[&] { return fs().append(to, to); }},  // a file cannot feed on itself
      {[&] { return fs().move(from, to); }, 1, ERROR_ALREADY_EXISTS},
      {[&] { return files.arm(otherVolume), fs().move(from, to); }},
      {[&] { return fs().move(from, url); }, 3},
      {[&] { return fs().erase(missing, ZoFileSystem::kFile); }, 1, ERROR_FILE_NOT_FOUND},
      {[&] { return fs().erase(dir, ZoFileSystem::kDirectory); }, 1, ERROR_DIR_NOT_EMPTY},
      {[&] { return fs().erase(dir, static_cast<ZoFileSystem::EraseType>(9)); }},
  };
  const Names before = listing();
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(c.run(), c.result);
    if (c.error) expectError(c.error);
    EXPECT_EQ(bytesOf(from) + bytesOf(to) + bytesOf(name(L"fixed")), "new old fixed");
    EXPECT_EQ(listing(), before);
  }
  // What would empty a volume never reaches the platform.
  for (const wchar_t* root : {L"", L"C:\\", L"C:\\x\\..", L"\\\\server\\share\\", L"\\",
                              L"\\\\?\\C:\\", L"\\\\?\\UNC\\server\\share\\"}) {
    files.arm({});
    EXPECT_EQ(fs().erase(ZoFileName(root), ZoFileSystem::kTree), 1);
    for (const std::string& call : files.calls()) EXPECT_EQ(call, "fullPath");
  }
}

TEST_F(FileSystem, DirectoriesAreMadeWithThoseAboveThemOrNotAtAll) {
  FaultyFiles files;
  for (int nth = 1; nth <= 5; ++nth) {
    files.arm({.fault = Fault::fail, .call = "createFolder", .nth = nth});
    EXPECT_EQ(fs().createDirectory(name(L"x\\y\\z")), 1) << nth;
    EXPECT_TRUE(files.met());
    expectError(ERROR_DISK_FULL);
    EXPECT_EQ(listing(), Names{}) << nth;
  }
  EXPECT_EQ(fs().createDirectory(name(L"x\\y\\z\\")), 0);
  EXPECT_EQ(listing(), (Names{L"x\\", L"x\\y\\", L"x\\y\\z\\"}));
}

TEST_F(FileSystem, NamesAreCompletedAndFound) {
  ZoFileName before, full, found, absolute(L"f.txt"), temp = name(L"f.txt");
  put(name(L"f.txt"), "");
  ASSERT_EQ(fs().getCurrentDirectory(before), 0);
  ASSERT_EQ(fs().setCurrentDirectory(name(L"")), 0);
  EXPECT_EQ(fs().getFullPathName(ZoFileName(L"x\\..\\f.txt"), full), 0);
  EXPECT_EQ(fs().getAbsolutePath(absolute), 0);
  EXPECT_EQ(fs().setCurrentDirectory(before), 0);
  EXPECT_EQ(fs().searchPath(ZoFileName(L"f.txt"), found, name(L"")), 0);
  for (const ZoFileName* made : {&full, &absolute, &found}) EXPECT_EQ(*made, name(L"f.txt"));
  EXPECT_EQ(fs().getTempFileName(temp, temp), 0);
  EXPECT_EQ(listing(), (Names{L"f.txt", temp.fileNameExt()})) << "a new file that is there";
}

// The platform's own call takes folders up to 246 characters.
TEST_F(FileSystem, TemporaryFilesAreMadeInFoldersOfAnyLength) {
  for (const std::size_t length : {100, 245, 246, 247, 260, 300, 400}) {
    std::wstring deep(name(L"").view());
    while (deep.size() + 1 < length) {
      const std::size_t level = std::min<std::size_t>(length - deep.size() - 1, 100);
      deep += std::wstring(deep.size() + level + 2 == length ? level - 1 : level, L'd') + L'\\';
    }
    ASSERT_EQ(deep.size(), length);
    ASSERT_EQ(fs().createDirectory(deep), 0);
    ZoFileName temp;
    EXPECT_EQ(fs().getTempFileName(temp, deep + L"\x43F\x43Erts.txt"), 0);
    EXPECT_TRUE(temp.view().starts_with(deep + L"\x43F\x43Er")) << length;
    EXPECT_NE(fs().getAttributes(temp), 0U) << length;
  }
}

// As some platforms do it: says yes to a change of case alone, and changes nothing.
class KeepsTheCase : public FaultyFiles {
 public:
  bool move(const wchar_t* from, const wchar_t* to, DWORD flags) override {
    if (ZoFileName(from) == to) return true;
    return FaultyFiles::move(from, to, flags);
  }
};

TEST_F(FileSystem, ChangingOnlyTheCaseRenamesOrLeavesAllAsItWas) {
  put(name(L"part.dwg"), "part");
  folder(L"dir\\sub");
  EXPECT_EQ(fs().move(name(L"part.dwg"), name(L"Part.DWG")), 0) << "whatever the platform does";
  EXPECT_EQ(listing(), (Names{L"Part.DWG", L"dir\\", L"dir\\sub\\"}));
  KeepsTheCase files;
  EXPECT_EQ(fs().move(name(L"Part.DWG"), name(L"dir\\pART.dwg")), 0) << "nothing in its way";
  EXPECT_EQ(fs().move(name(L"dir\\pART.dwg"), name(L"DIR\\part.dwg")), 0);
  EXPECT_EQ(fs().move(name(L"dir\\"), name(L"Dir\\")), 0);
  const Names before = {L"Dir\\", L"Dir\\part.dwg", L"Dir\\sub\\"};
  EXPECT_EQ(listing(), before);
  for (int nth = 1; nth <= 2; ++nth) {
    files.arm({.fault = Fault::fail, .call = "move", .nth = nth, .error = ERROR_SHARING_VIOLATION});
    EXPECT_EQ(fs().move(name(L"Dir\\part.dwg"), name(L"Dir\\PART.dwg")), 1) << nth;
    expectError(ERROR_SHARING_VIOLATION);
    EXPECT_EQ(listing(), before) << nth;
  }
  ZoFileTransfer transfer;
  transfer.refuseExisting(true);
  transfer.add(name(L"Dir\\part.dwg"), name(L"Dir\\PART.dwg"));
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0) << "it is not in its own way";
  EXPECT_EQ(bytesOf(name(L"Dir\\PART.dwg")), "part");
  EXPECT_EQ(listing(), (Names{L"Dir\\", L"Dir\\PART.dwg", L"Dir\\sub\\"}));
}

#if !defined(_MSC_VER)
TEST(FileSystemService, VirtualFunctionsHaveTheirSlots) {
  using S = ZoFileSystem;
  using Name = const ZoFileName&;
  using Pair = int (S::*)(Name, Name, bool);
  using Fetch = int (S::*)(Name, ZoFileName&, bool);
  using Label = int (S::*)(const wchar_t*, Name);
  expectSlots(
      6, &S::createDirectory, &S::getCurrentDirectory, &S::setCurrentDirectory, &S::getTempPath,
      &S::getAbsolutePath, &S::getFullPathName, &S::searchPath, static_cast<Pair>(&S::copy),
      static_cast<Pair>(&S::append), &S::move, &S::erase, &S::getTempFileName, &S::getAttributes,
      &S::subSetAttributes, &S::getVolumeInformation, &S::getDiskFreeSpace, &S::getDriveType,
      &S::getLogicalDrivesStrings, static_cast<Label>(&S::setVolumeLabel), &S::getCDRom,
      &S::errorIO, &S::errorTxt, static_cast<Fetch>(&S::getRemote), &S::putRemote, &S::isRemote);
}
#endif

TEST_F(FileSystem, CopiesKeepAttributesAndMovesTakeFolders) {
  folder(L"dir\\sub");
  put(name(L"f"), "abc");
  EXPECT_EQ(fs().subSetAttributes(name(L"f"), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_EQ(fs().copy(name(L"f"), name(L"copy")), 0);
  EXPECT_TRUE(fs().getAttributes(name(L"copy")) & FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(fs().move(name(L"dir"), name(L"renamed")), 0);
  EXPECT_EQ(listing(), (Names{L"copy", L"f", L"renamed\\", L"renamed\\sub\\"}));
}

TEST_F(FileSystem, ErasesWhatTheTypeSays) {
  folder(L"t\\a\\b");
  for (const wchar_t* file :
       {L"f", L"a\\b\\g", L"one.bak", L"two.BAK", L"three.bakery", L"one.dwg", L"a\\deep.bak"})
    put(name(std::wstring(L"t\\") + file), "x");
  for (const wchar_t* none : {L"t\\one.dwg", L"t\\one.dwg", L"gone\\f"})  // none is no failure
    EXPECT_EQ(fs().erase(name(none), ZoFileSystem::kBackups), 0);
  EXPECT_EQ(bytesOf(name(L"t\\one.bak")) + bytesOf(name(L"t\\two.BAK")), "(none)x");
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kBackups), 0);
  EXPECT_EQ(fs().erase(name(L"t\\f"), ZoFileSystem::kFile), 0);
  EXPECT_EQ(listing(), (Names{L"t\\", L"t\\a\\", L"t\\a\\b\\", L"t\\a\\b\\g", L"t\\a\\deep.bak",
                              L"t\\one.dwg", L"t\\three.bakery"}));
  EXPECT_EQ(fs().erase(name(L"t\\"), ZoFileSystem::kTree), 0);
  EXPECT_EQ(listing(), Names{});
}

TEST_F(FileSystem, ATreeThatCannotGoWholeGoesInPart) {
  folder(L"t\\a");
  folder(L"t\\b\\c");
  put(name(L"t\\a\\busy"), "");
  ZoFile user;
  ASSERT_EQ(user.open(name(L"t\\a\\busy")), 0);
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), ZoResult::partial);
  expectError(ERROR_SHARING_VIOLATION);  // the reason, not what follows of it
  EXPECT_EQ(listing(), (Names{L"t\\", L"t\\a\\", L"t\\a\\busy"}));
  EXPECT_EQ(user.close(), 0);
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .forEver = true});
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), 1) << "nothing could go";
  files.arm({.fault = Fault::fail, .call = "findNext", .nth = 2});
  EXPECT_NE(fs().erase(name(L"t"), ZoFileSystem::kTree), 0) << "the walk broke off";
  expectError(ERROR_DISK_FULL);
}

}  // namespace
}  // namespace zo::test
