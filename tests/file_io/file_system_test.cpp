// The file-system service on real files and folders. (interrupted_test.cpp has failures within.)
#include <zo/files/file.h>
#include <zo/files/forward_file_system.h>
#include <zo/text/containers/array.h>

#include <functional>

#include "file_io/file_fixture.h"
#include "support/faulty_files.h"

namespace zo::test {
namespace {

class FileSystem : public FileTest {
 protected:
  void folder(const std::wstring& relative) {
    std::filesystem::create_directories(std::filesystem::path(name(relative).fullName()));
  }
  // A name below a macro that stands for the test's folder.
  ZoFileName below(const wchar_t* text) const {
    ZoFileName name(text);
    name.setMacro(L"LIB", this->name(L"").fullName());
    return name;
  }
};

TEST_F(FileSystem, DirectoriesAreMadeWithThoseAboveThemOrNotAtAll) {
  EXPECT_EQ(fs().createDirectory(name(L"a\\b\\c\\")), 0);
  EXPECT_EQ(listing(), (Names{L"a\\", L"a\\b\\", L"a\\b\\c\\"}));
  EXPECT_EQ(fs().createDirectory(name(L"a\\b")), 1);
  expectError(ERROR_ALREADY_EXISTS);
  put(name(L"file"), "");
  EXPECT_EQ(fs().createDirectory(name(L"file\\x")), 1);
  EXPECT_EQ(fs().createDirectory(ZoFileName()), 1);
  const Names before = listing();
  FaultyFiles files;
  for (int nth = 1; nth <= 5; ++nth) {
    files.arm({.fault = Fault::fail, .call = "createFolder", .nth = nth});
    EXPECT_EQ(fs().createDirectory(name(L"x\\y\\z")), 1) << nth;
    EXPECT_TRUE(files.met());
    expectError(ERROR_DISK_FULL);
    EXPECT_EQ(listing(), before) << nth;
  }
  std::wstring deep = L"deep";
  while (name(deep).fullNameSize() < 600) deep += L"\\" + std::wstring(100, L'\x44F');
  EXPECT_EQ(fs().createDirectory(name(deep)), 0) << "a long path";
  EXPECT_TRUE(fs().getAttributes(name(deep)) & FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(fs().erase(name(L"deep"), ZoFileSystem::kTree), 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(FileSystem, NamesAreCompletedAndFound) {
  ZoFileName before, now, full, temp, found, absolute(L"f.txt"), url(L"http://host/f");
  put(name(L"f.txt"), "");
  ASSERT_EQ(fs().getCurrentDirectory(before), 0);
  EXPECT_TRUE(before.isDirectory());
  ASSERT_EQ(fs().setCurrentDirectory(name(L"")), 0);
  ASSERT_EQ(fs().getCurrentDirectory(now), 0);
  EXPECT_EQ(now, name(L""));
  EXPECT_EQ(fs().getFullPathName(ZoFileName(L"x\\..\\f.txt"), full), 0);
  EXPECT_EQ(full, name(L"f.txt"));
  EXPECT_EQ(fs().getAbsolutePath(absolute), 0);
  EXPECT_EQ(absolute, name(L"f.txt"));
  EXPECT_EQ(fs().setCurrentDirectory(before), 0);
  EXPECT_EQ(fs().getAbsolutePath(url), 0);
  EXPECT_EQ(url, L"http://host/f");

  EXPECT_EQ(fs().searchPath(ZoFileName(L"f.txt"), found, name(L"")), 0);
  EXPECT_EQ(found, name(L"f.txt"));
  EXPECT_EQ(fs().searchPath(ZoFileName(L"no such file"), found, name(L"")), 1);
  EXPECT_EQ(found, name(L"f.txt"));
  EXPECT_EQ(fs().searchPath(ZoFileName(L"kernel32.dll"), found, ZoFileName()), 0);
  EXPECT_EQ(fs().getTempPath(temp), 0);
  EXPECT_TRUE(temp.isDirectory() && exists(temp));

  ZoFileName one, two, elsewhere;
  EXPECT_EQ(fs().getTempFileName(one, name(L"prefix.x")), 0);
  EXPECT_EQ(fs().getTempFileName(two, below(L"prefix.x")), 0);
  EXPECT_FALSE(one == two);
  EXPECT_EQ(listing().size(), 3u) << "the files are there";
  EXPECT_EQ(std::wstring(one.fileName()).substr(0, 3), L"pre");
  ASSERT_EQ(fs().getTempFileName(elsewhere, ZoFileName()), 0);
  EXPECT_EQ(fs().erase(elsewhere, ZoFileSystem::kFile), 0);
}

TEST_F(FileSystem, CopiesReplaceOrRefuse) {
  put(name(L"from"), "new");
  put(name(L"to"), "old");
  EXPECT_EQ(fs().copy(name(L"from"), name(L"to"), true), 1);
  expectError(ERROR_FILE_EXISTS);
  EXPECT_EQ(bytesOf(name(L"to")), "old");
  EXPECT_EQ(fs().copy(name(L"from"), name(L"to")), 0);
  EXPECT_EQ(fs().copy(below(L"from"), below(L"fresh"), true), 0);
  EXPECT_EQ(bytesOf(name(L"to")) + bytesOf(name(L"fresh")) + bytesOf(name(L"from")), "newnewnew");
  EXPECT_EQ(fs().copy(name(L"missing"), name(L"to")), 1);
  EXPECT_EQ(fs().copy(name(L"from"), name(L"missing\\to")), 1);
  // Made read-only between two calls: refused, although this platform's user might be allowed to.
  EXPECT_EQ(fs().subSetAttributes(name(L"to"), FILE_ATTRIBUTE_READONLY), 0);
  put(name(L"from"), "newer");
  EXPECT_EQ(fs().copy(name(L"from"), name(L"to")), 1);
  expectError(ERROR_ACCESS_DENIED);
  EXPECT_EQ(bytesOf(name(L"to")), "new");
  EXPECT_EQ(fs().copy(name(L"to"), name(L"copy")), 0);
  EXPECT_TRUE(fs().getAttributes(name(L"copy")) & FILE_ATTRIBUTE_READONLY) << "as its source";
  EXPECT_EQ(listing(), (Names{L"copy", L"fresh", L"from", L"to"})) << "and nothing beside them";
}

TEST_F(FileSystem, AppendingAddsToTheEnd) {
  const std::string large(200'000, 'x');
  put(name(L"from"), large);
  EXPECT_EQ(fs().append(name(L"from"), name(L"to"), true), 1);
  expectError(ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(fs().append(name(L"from"), name(L"to")), 0);
  EXPECT_EQ(fs().append(name(L"from"), name(L"to"), true), 0);
  EXPECT_EQ(fs().append(name(L"missing"), name(L"other")), 1);
  EXPECT_EQ(fs().append(name(L"to"), name(L"to")), 1) << "a file cannot feed on itself";
  EXPECT_TRUE(bytesOf(name(L"to")) == large + large);
  EXPECT_EQ(listing(), (Names{L"from", L"to"}));
}

TEST_F(FileSystem, MovesRenameAndNeverReplace) {
  put(name(L"from"), "content");
  put(name(L"taken"), "old");
  folder(L"dir\\sub");
  EXPECT_EQ(fs().move(name(L"from"), name(L"taken")), 1);
  expectError(ERROR_ALREADY_EXISTS);
  EXPECT_EQ(fs().move(name(L"from"), name(L"dir\\to")), 0);
  EXPECT_EQ(fs().move(name(L"dir"), name(L"renamed")), 0);
  EXPECT_EQ(fs().move(name(L"from"), name(L"x")), 1) << "gone";
  EXPECT_EQ(listing(), (Names{L"renamed\\", L"renamed\\sub\\", L"renamed\\to", L"taken"}));
  EXPECT_EQ(fs().move(name(L"taken"), ZoFileName(L"ftp://h/f")), 3);
  EXPECT_EQ(fs().move(ZoFileName(L"ftp://h/f"), ZoFileName(L"ftp://other/f")), 3);

  FaultyFiles files;
  const FaultPlan otherVolume{.fault = Fault::fail, .call = "move", .error = ERROR_NOT_SAME_DEVICE};
  files.arm(otherVolume);
  EXPECT_EQ(fs().move(name(L"renamed\\to"), name(L"taken")), 1) << "nor on another volume";
  files.arm(otherVolume);
  EXPECT_EQ(fs().move(name(L"renamed\\to"), name(L"to")), 0);
  EXPECT_EQ(listing(), (Names{L"renamed\\", L"renamed\\sub\\", L"taken", L"to"}));
  EXPECT_EQ(bytesOf(name(L"to")) + bytesOf(name(L"taken")), "contentold");
  struct Stubborn : FaultyFiles {
    bool removeFile(const wchar_t*) override {
      SetLastError(ERROR_ACCESS_DENIED);
      return false;
    }
  } stubborn;
  stubborn.arm(otherVolume);
  EXPECT_EQ(fs().move(name(L"to"), name(L"copy")), ZoResult::partial) << "the source stays";
  EXPECT_EQ(bytesOf(name(L"to")) + bytesOf(name(L"copy")), "contentcontent");
}

TEST_F(FileSystem, ErasesWhatTheTypeSays) {
  folder(L"t\\a\\b");
  for (const wchar_t* file :
       {L"f", L"a\\b\\g", L"one.bak", L"two.BAK", L"three.bakery", L"one.dwg", L"a\\deep.bak"})
    put(name(std::wstring(L"t\\") + file), "");
  EXPECT_EQ(fs().erase(name(L"t\\one.dwg"), ZoFileSystem::kBackups), 0) << "that beside a file";
  EXPECT_FALSE(exists(name(L"t\\one.bak")));
  EXPECT_TRUE(exists(name(L"t\\one.dwg")) && exists(name(L"t\\two.BAK")));
  EXPECT_EQ(fs().erase(name(L"t\\one.dwg"), ZoFileSystem::kBackups), 0) << "none is none to erase";
  EXPECT_EQ(fs().erase(name(L"gone\\f"), ZoFileSystem::kBackups), 0);
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kBackups), 0);
  EXPECT_EQ(listing(), (Names{L"t\\", L"t\\a\\", L"t\\a\\b\\", L"t\\a\\b\\g", L"t\\a\\deep.bak",
                              L"t\\f", L"t\\one.dwg", L"t\\three.bakery"}));
  EXPECT_EQ(fs().erase(name(L"t\\f"), ZoFileSystem::kFile), 0);
  EXPECT_EQ(fs().erase(name(L"t\\f"), ZoFileSystem::kFile), 1);
  expectError(ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(fs().erase(name(L"t\\a"), ZoFileSystem::kFile), 1) << "a directory is no file";
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kDirectory), 1);
  expectError(ERROR_DIR_NOT_EMPTY);
  EXPECT_EQ(fs().erase(name(L"t"), static_cast<ZoFileSystem::EraseType>(9)), 1);
  EXPECT_EQ(fs().erase(name(L"t\\"), ZoFileSystem::kTree), 0);
  EXPECT_EQ(listing(), Names{});
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), 1) << "gone";
}

TEST_F(FileSystem, ATreeThatCannotGoWholeGoesInPart) {
  folder(L"t\\a");
  folder(L"t\\b\\c");
  put(name(L"t\\a\\busy"), "");
  put(name(L"t\\b\\free"), "");
  ZoFile user;
  ASSERT_EQ(user.open(name(L"t\\a\\busy")), 0);
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), ZoResult::partial);
  expectError(ERROR_SHARING_VIOLATION);  // the reason, not what follows of it
  EXPECT_EQ(listing(), (Names{L"t\\", L"t\\a\\", L"t\\a\\busy"}));
  user.close();
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .forEver = true});
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), 1) << "nothing could go";
  files.arm({.fault = Fault::fail, .call = "findNext", .nth = 2});
  EXPECT_NE(fs().erase(name(L"t"), ZoFileSystem::kTree), 0) << "the walk broke off";
  expectError(ERROR_DISK_FULL);
  // What would empty a volume never reaches the platform.
  for (const wchar_t* root : {L"", L"C:\\", L"C:\\x\\..", L"\\\\server\\share\\", L"\\",
                              L"\\\\?\\C:\\", L"\\\\?\\UNC\\server\\share\\"}) {
    files.arm({});
    EXPECT_EQ(fs().erase(ZoFileName(root), ZoFileSystem::kTree), 1);
    for (const std::string& call : files.calls()) EXPECT_EQ(call, "fullPath");
  }
}

TEST_F(FileSystem, VolumesAnswer) {
  unsigned int serial = 0, longest = 0, flags = 0, free = 0, total = 0, untouched = 77;
  ZoString label, system;
  for (const ZoFileName& somewhere : {name(L"missing\\file"), below(L"missing\\file")}) {
    EXPECT_EQ(fs().getVolumeInformation(serial, longest, flags, somewhere, label, system), 0);
    EXPECT_EQ(longest, 255u);
    EXPECT_FALSE(system.isEmpty());
    EXPECT_EQ(fs().getDiskFreeSpace(free, total, somewhere), 0);
    EXPECT_TRUE(free > 0 && free <= total);
    EXPECT_EQ(fs().getDriveType(somewhere), ZoFileSystem::kFixed);
  }
  const ZoFileName none(L"Q:\\");
  EXPECT_EQ(fs().getDriveType(none), ZoFileSystem::kNoRoot);
  EXPECT_EQ(fs().getDriveType(ZoFileName(L"ftp://h/")), ZoFileSystem::kUnknown);
  EXPECT_EQ(fs().getVolumeInformation(untouched, untouched, untouched, none, label, system), 1);
  EXPECT_EQ(fs().getDiskFreeSpace(untouched, untouched, none), 1);
  EXPECT_EQ(untouched, 77u);
}

TEST_F(FileSystem, DiscsAreFoundByTheirLabel) {
  struct Discs : FaultyFiles {
    DWORD drives(DWORD size, wchar_t* buffer) override {
      constexpr wchar_t kRoots[] = L"C:\\\0D:\\\0E:\\\0";
      constexpr DWORD kLength = 12;
      if (size > kLength) std::copy(kRoots, kRoots + kLength + 1, buffer);
      return kLength;
    }
    DWORD driveType(const wchar_t* root) override {
      return *root == L'C' ? DRIVE_FIXED : DRIVE_CDROM;
    }
    bool volume(const wchar_t* root, Volume& volume) override {
      volume = {};
      wcscpy(volume.label, L"Catalogue");
      return *root == L'E';
    }
  } discs;
  ZoArray<ZoFileName> drives;
  ZoArray<ZoString> labels;
  EXPECT_EQ(fs().getCDRom(drives, labels), 0);
  ASSERT_EQ(drives.entries(), 2u);
  EXPECT_EQ(drives[0], L"D:\\");
  EXPECT_EQ(labels[0], L"");
  EXPECT_EQ(labels[1], L"Catalogue");
  ZoFileName file(L"cd://catalogue/parts/bolt.dwg"), missing(L"cd://other/f");
  EXPECT_EQ(fs().getAbsolutePath(file), 0);
  EXPECT_EQ(file, L"E:\\parts\\bolt.dwg");
  EXPECT_EQ(fs().getAbsolutePath(missing), 1);
  EXPECT_EQ(missing, L"cd://other/f");
}

// Every operation whose call fails: 1, the operation's name, and the error for errorTxt.
TEST_F(FileSystem, EveryFailureIsReportedUnderItsName) {
  RecordingFileSystem service;
  put(name(L"f"), "abc");
  const ZoFileName f = name(L"f"), to = name(L"to"), url(L"http://host/f");
  ZoFileName out;
  ZoString text;
  ZoArray<ZoFileName> names;
  ZoArray<ZoString> texts;
  unsigned int n = 0;
  using X = const ZoFileName&;
  struct Case {
    const char* call;
    const wchar_t* reported;
    std::function<unsigned int(X)> run;  // with f, and with a URL
    unsigned int result = 1, withUrl = 3;
  };
  const Case cases[] = {
      {"createFolder", L"ZoFileSystemCreateDir", [&](X x) { return service.createDirectory(x); }},
      {"currentFolder", L"getCurrentDirectory", [&](X) { return service.getCurrentDirectory(out); },
       1, 0},
      {"setCurrentFolder", L"setCurrentDirectory",
       [&](X x) { return service.setCurrentDirectory(x); }},
      {"tempFolder", L"getTempPath", [&](X) { return service.getTempPath(out); }, 1, 0},
      {"fullPath", L"getFullPathName", [&](X x) { return service.getFullPathName(x, out); }},
      {"searchPath", L"searchPath", [&](X x) { return service.searchPath(x, out, ZoFileName()); }},
      {"copy", L"copy", [&](X x) { return service.copy(x, to); }},
      {"read", L"append", [&](X x) { return service.append(x, to); }},
      {"move", L"move", [&](X x) { return service.move(x, to); }},
      {"removeFile", L"erase File", [&](X x) { return service.erase(x, ZoFileSystem::kFile); }},
      {"removeFolder", L"erase Directory",
       [&](X x) { return service.erase(x, ZoFileSystem::kDirectory); }},
      {"findFirst", L"erase", [&](X x) { return service.erase(x, ZoFileSystem::kTree); }},
      {"tempName", L"getTempFileName", [&](X x) { return service.getTempFileName(out, x); }},
      {"attributes", L"getAttributes", [&](X x) { return service.getAttributes(x); }, 0},
      {"setAttributes", L"subSetAttributes", [&](X x) { return service.subSetAttributes(x, 0); }},
      {"volume", L"getVolumeInformation",
       [&](X x) { return service.getVolumeInformation(n, n, n, x, text, text); }},
      {"space", L"getDiskFreeSpace", [&](X x) { return service.getDiskFreeSpace(n, n, x); }},
      {"drives", L"getLogicalDrivesStrings",
       [&](X) { return service.getLogicalDrivesStrings(names); }, 1, 0},
      {"drives", L"getLogicalDrivesStrings", [&](X) { return service.getCDRom(names, texts); }, 1,
       0},
      {"setLabel", L"setVolumeLabel", [&](X x) { return service.setVolumeLabel(L"x", x); }},
  };
  expectReported(service, cases, [&](const Case& c) { return c.run(f); });
  service.operations.clear();
  for (const Case& c : cases) EXPECT_EQ(c.run(url), c.withUrl) << c.call << " with a URL";
  EXPECT_EQ(service.operations, Names{});
  EXPECT_EQ(bytesOf(f), "abc");
}

// One that fails a single operation and passes all others on.
class NoCopies : public ZoForwardFileSystem {
 public:
  using ZoForwardFileSystem::ZoForwardFileSystem;
  int copy(const ZoFileName&, const ZoFileName&, bool) override { return ZoResult::refused; }
};

TEST_F(FileSystem, AWrapperChangesOneOperationAndServesTheRest) {
  auto* const installed = new NoCopies(fs());
  ZoSystem::setFileSystem(installed);
  put(name(L"f"), "abc");
  EXPECT_EQ(fs().copy(name(L"f"), name(L"g"), false), 1);
  EXPECT_EQ(fs().move(name(L"f"), name(L"g")), 0);
  EXPECT_EQ(fs().erase(name(L"missing"), ZoFileSystem::kFile), 1);
  expectError(ERROR_FILE_NOT_FOUND);
  ZoSystem::setFileSystem(nullptr);
  delete installed;
}

}  // namespace
}  // namespace zo::test
