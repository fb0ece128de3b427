// The file-system service on real files and folders.
#include <zo/files/file.h>
#include <zo/files/forward_file_system.h>
#include <zo/text/containers/array.h>

#include <functional>

#include "file_io/faulty_files.h"
#include "file_io/file_fixture.h"
#include "support/child_process.h"

namespace zo::test {
namespace {

class FileSystem : public FileTest {
 protected:
  ZoFileSystem& fs() { return ZoSystem::fileSystem(); }
  std::wstring errorText() { return std::wstring(fs().errorTxt().view()); }
  void folder(const std::wstring& relative) {
    std::filesystem::create_directories(std::filesystem::path(name(relative).fullName()));
  }
};

TEST_F(FileSystem, DirectoriesAreMadeWithThoseAboveThemOrNotAtAll) {
  EXPECT_EQ(fs().createDirectory(name(L"a")), 0);
  EXPECT_EQ(fs().createDirectory(name(L"a\\b\\c\\d\\")), 0);
  EXPECT_EQ(listing(), (Names{L"a\\", L"a\\b\\", L"a\\b\\c\\", L"a\\b\\c\\d\\"}));
  EXPECT_EQ(fs().createDirectory(name(L"a\\b")), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_ALREADY_EXISTS));
  put(name(L"file"), "");
  EXPECT_EQ(fs().createDirectory(name(L"file\\x")), 1);
  EXPECT_EQ(fs().createDirectory(ZoFileName()), 1);
  EXPECT_EQ(fs().createDirectory(ZoFileName(L"http://host/dir")), 3);
  const Names before = listing();
  FaultyFiles files;
  for (int nth = 1; nth <= 5; ++nth) {
    files.arm({.fault = Fault::fail, .call = "createFolder", .nth = nth});
    EXPECT_EQ(fs().createDirectory(name(L"x\\y\\z")), 1) << nth;
    EXPECT_TRUE(files.met());
    EXPECT_EQ(errorText(), messageOf(ERROR_DISK_FULL));
    EXPECT_EQ(listing(), before) << nth;
  }
  std::wstring deep = L"deep";
  while (name(deep).fullNameSize() < 600) deep += L"\\" + std::wstring(100, L'\x44F');
  EXPECT_EQ(fs().createDirectory(name(deep)), 0) << "a long path";
  EXPECT_NE(fs().getAttributes(name(deep)) & FILE_ATTRIBUTE_DIRECTORY, 0u);
  EXPECT_EQ(fs().erase(name(L"deep"), ZoFileSystem::kTree), 0);
  EXPECT_EQ(listing(), before);
}

TEST_F(FileSystem, TheCurrentDirectoryCompletesNames) {
  ZoFileName before, now, full, temp;
  ASSERT_EQ(fs().getCurrentDirectory(before), 0);
  EXPECT_TRUE(before.isDirectory());
  put(name(L"f.txt"), "");
  ASSERT_EQ(fs().setCurrentDirectory(name(L"")), 0);
  ASSERT_EQ(fs().getCurrentDirectory(now), 0);
  EXPECT_EQ(now, name(L""));
  EXPECT_EQ(fs().getFullPathName(ZoFileName(L"x\\..\\f.txt"), full), 0);
  EXPECT_EQ(full, name(L"f.txt"));
  ZoFileName absolute(L"f.txt");
  EXPECT_EQ(fs().getAbsolutePath(absolute), 0);
  EXPECT_EQ(absolute, name(L"f.txt"));
  EXPECT_EQ(fs().setCurrentDirectory(name(L"missing")), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(fs().setCurrentDirectory(before), 0);

  ZoFileName found(L"unchanged");
  EXPECT_EQ(fs().searchPath(ZoFileName(L"f.txt"), found, name(L"")), 0);
  EXPECT_EQ(found, name(L"f.txt"));
  EXPECT_EQ(fs().searchPath(ZoFileName(L"no such file"), found, name(L"")), 1);
  EXPECT_EQ(found, name(L"f.txt"));
  EXPECT_EQ(fs().searchPath(ZoFileName(L"kernel32.dll"), found, ZoFileName()), 0);
  EXPECT_EQ(fs().getTempPath(temp), 0);
  EXPECT_TRUE(temp.isDirectory());
  EXPECT_TRUE(exists(temp));
  // URLs are absolute, and have no place in the file system.
  ZoFileName url(L"http://host/f");
  EXPECT_EQ(fs().getAbsolutePath(url), 0);
  EXPECT_EQ(url, L"http://host/f");
  EXPECT_EQ(fs().getFullPathName(url, full), 3);
  EXPECT_EQ(fs().setCurrentDirectory(url), 3);
  EXPECT_EQ(fs().searchPath(url, found, ZoFileName()), 3);
  EXPECT_EQ(fs().getTempFileName(found, url), 3);
}

TEST_F(FileSystem, TemporaryNamesAreTaken) {
  ZoFileName one, two, elsewhere(L"unchanged");
  EXPECT_EQ(fs().getTempFileName(one, name(L"prefix.x")), 0);
  EXPECT_EQ(fs().getTempFileName(two, name(L"prefix.x")), 0);
  EXPECT_FALSE(one == two);
  EXPECT_EQ(listing().size(), 2u) << "the files are there";
  EXPECT_EQ(std::wstring(one.fileName()).substr(0, 3), L"pre");
  EXPECT_EQ(fs().getTempFileName(elsewhere, name(L"missing\\x")), 1);
  EXPECT_EQ(elsewhere, L"unchanged");
  ASSERT_EQ(fs().getTempFileName(elsewhere, ZoFileName()), 0);
  EXPECT_EQ(fs().erase(elsewhere, ZoFileSystem::kFile), 0);
}

TEST_F(FileSystem, CopiesReplaceOrRefuse) {
  put(name(L"from"), "new");
  put(name(L"to"), "old");
  EXPECT_EQ(fs().copy(name(L"from"), name(L"to"), true), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_FILE_EXISTS));
  EXPECT_EQ(bytesOf(name(L"to")), "old");
  EXPECT_EQ(fs().copy(name(L"from"), name(L"to")), 0);
  EXPECT_EQ(fs().copy(name(L"from"), name(L"fresh"), true), 0);
  EXPECT_EQ(bytesOf(name(L"to")) + bytesOf(name(L"fresh")) + bytesOf(name(L"from")), "newnewnew");
  EXPECT_EQ(fs().copy(name(L"missing"), name(L"to")), 1);
  EXPECT_EQ(fs().copy(name(L"from"), name(L"missing\\to")), 1);
  // Made read-only between two calls: refused, although this platform's user might be allowed to.
  EXPECT_EQ(fs().subSetAttributes(name(L"to"), FILE_ATTRIBUTE_READONLY), 0);
  put(name(L"from"), "newer");
  EXPECT_EQ(fs().copy(name(L"from"), name(L"to")), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_ACCESS_DENIED));
  EXPECT_EQ(bytesOf(name(L"to")), "new");
  // A read-only source gives a read-only copy.
  EXPECT_EQ(fs().copy(name(L"to"), name(L"copy")), 0);
  EXPECT_NE(fs().getAttributes(name(L"copy")) & FILE_ATTRIBUTE_READONLY, 0u);
  EXPECT_EQ(listing(), (Names{L"copy", L"fresh", L"from", L"to"})) << "and nothing beside them";
}

TEST_F(FileSystem, AppendingAddsToTheEnd) {
  const std::string large(200'000, 'x');
  put(name(L"from"), large);
  EXPECT_EQ(fs().append(name(L"from"), name(L"to"), true), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(fs().append(name(L"from"), name(L"to")), 0);
  EXPECT_EQ(fs().append(name(L"from"), name(L"to"), true), 0);
  EXPECT_TRUE(bytesOf(name(L"to")) == large + large);
  EXPECT_EQ(fs().append(name(L"missing"), name(L"other")), 1);
  EXPECT_EQ(fs().append(name(L"to"), name(L"to")), 1) << "a file cannot feed on itself";
  EXPECT_TRUE(bytesOf(name(L"to")) == large + large);
  EXPECT_FALSE(exists(name(L"other")));
}

// Whatever call fails: an error, the target as before, the source intact, nothing beside them.
TEST_F(FileSystem, AFailureLeavesTargetAndSource) {
  struct Case {
    const char* what;
    std::function<int(const ZoFileName&, const ZoFileName&)> run;
    bool replaces;
  } const cases[] = {
      {"copy", [&](auto& from, auto& to) { return fs().copy(from, to); }, true},
      {"append", [&](auto& from, auto& to) { return fs().append(from, to); }, true},
      {"move", [&](auto& from, auto& to) { return fs().move(from, to); }, false},
  };
  const std::string large(150'000, 'n');
  FaultyFiles files;
  for (const Case& c : cases) {
    for (const bool there : {false, true}) {
      if (there && !c.replaces) continue;
      for (int nth = 1;; ++nth) {
        put(name(L"from"), large);
        if (there) put(name(L"to"), "old");
        files.arm({.fault = Fault::fail, .nth = nth});
        const int code = c.run(name(L"from"), name(L"to"));
        const bool met = files.met();
        const std::string shown = std::string(c.what) + " " + std::to_string(nth) + " of " +
                                  std::to_string(files.calls().size());
        files.arm({});
        if (code == 0) {
          // Not every call is one that must work: what was asked first may be left unanswered.
          EXPECT_NE(bytesOf(name(L"to")), there ? "old" : "(none)") << shown;
        } else {
          EXPECT_EQ(code, 1) << shown;
          EXPECT_EQ(errorText(), messageOf(ERROR_DISK_FULL)) << shown;
          EXPECT_TRUE(bytesOf(name(L"from")) == large) << shown;
          const std::string now = bytesOf(name(L"to"));
          // A target that could not be closed in the end is complete.
          EXPECT_TRUE(now == (there ? "old" : "(none)") || now == (there ? "old" + large : large))
              << shown;
        }
        const Names left = listing();
        EXPECT_LE(left.size(), 2u) << shown;
        DeleteFileW(name(L"to").fullName());
        if (!met) break;
        ASSERT_LT(nth, 100);
      }
    }
  }
}

TEST_F(FileSystem, MovesRenameAndNeverReplace) {
  put(name(L"from"), "content");
  put(name(L"taken"), "old");
  folder(L"dir\\sub");
  EXPECT_EQ(fs().move(name(L"from"), name(L"taken")), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_ALREADY_EXISTS));
  EXPECT_EQ(fs().move(name(L"from"), name(L"dir\\to")), 0);
  EXPECT_EQ(fs().move(name(L"dir"), name(L"renamed")), 0);
  EXPECT_EQ(fs().move(name(L"from"), name(L"x")), 1) << "gone";
  EXPECT_EQ(listing(), (Names{L"renamed\\", L"renamed\\sub\\", L"renamed\\to", L"taken"}));
  EXPECT_EQ(fs().move(name(L"taken"), ZoFileName(L"ftp://h/f")), 3);
  EXPECT_EQ(fs().move(ZoFileName(L"ftp://h/f"), ZoFileName(L"ftp://other/f")), 3);
  EXPECT_EQ(fs().move(ZoFileName(L"http://h/f"), ZoFileName(L"http://h/g")), 3);
}

TEST_F(FileSystem, AMoveToAnotherVolumeCopiesAndErases) {
  FaultyFiles files;
  const FaultPlan otherVolume{.fault = Fault::fail, .call = "move", .error = ERROR_NOT_SAME_DEVICE};
  put(name(L"from"), "content");
  files.arm(otherVolume);
  EXPECT_EQ(fs().move(name(L"from"), name(L"to")), 0);
  EXPECT_EQ(listing(), (Names{L"to"}));
  EXPECT_EQ(bytesOf(name(L"to")), "content");

  put(name(L"from"), "other");
  files.arm(otherVolume);
  EXPECT_EQ(fs().move(name(L"from"), name(L"to")), 1) << "still refuses to replace";
  EXPECT_EQ(bytesOf(name(L"to")), "content");

  // The source that cannot be erased: the move is done in part.
  struct Stubborn : FaultyFiles {
    bool removeFile(const wchar_t*) override {
      SetLastError(ERROR_ACCESS_DENIED);
      return false;
    }
  } stubborn;
  stubborn.arm(otherVolume);
  EXPECT_EQ(fs().move(name(L"from"), name(L"copy")), ZoResult::partial);
  EXPECT_EQ(bytesOf(name(L"from")) + bytesOf(name(L"copy")), "otherother");
}

TEST_F(FileSystem, ErasesWhatTheTypeSays) {
  const auto build = [&] {
    folder(L"t\\a\\b");
    put(name(L"t\\f"), "");
    put(name(L"t\\a\\b\\g"), "");
    put(name(L"t\\one.bak"), "");
    put(name(L"t\\two.BAK"), "");
    put(name(L"t\\three.bakery"), "");
    put(name(L"t\\one.dwg"), "");
    put(name(L"t\\a\\deep.bak"), "");
  };
  build();
  EXPECT_EQ(fs().erase(name(L"t\\one.dwg"), ZoFileSystem::kBackups), 0) << "that beside a file";
  EXPECT_FALSE(exists(name(L"t\\one.bak")));
  EXPECT_TRUE(exists(name(L"t\\one.dwg")) && exists(name(L"t\\two.BAK")));
  EXPECT_EQ(fs().erase(name(L"t\\one.dwg"), ZoFileSystem::kBackups), 0) << "none is none to erase";
  build();
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kBackups), 0);
  EXPECT_EQ(listing(), (Names{L"t\\", L"t\\a\\", L"t\\a\\b\\", L"t\\a\\b\\g", L"t\\a\\deep.bak",
                              L"t\\f", L"t\\one.dwg", L"t\\three.bakery"}));
  EXPECT_EQ(fs().erase(name(L"t\\f"), ZoFileSystem::kFile), 0);
  EXPECT_EQ(fs().erase(name(L"t\\f"), ZoFileSystem::kFile), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(fs().erase(name(L"t\\a"), ZoFileSystem::kFile), 1) << "a directory is no file";
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kDirectory), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_DIR_NOT_EMPTY));
  EXPECT_EQ(fs().erase(name(L"t"), static_cast<ZoFileSystem::EraseType>(9)), 1);
  EXPECT_EQ(fs().erase(name(L"t\\"), ZoFileSystem::kTree), 0);
  EXPECT_EQ(listing(), Names{});
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), 1) << "gone";
  folder(L"empty");
  EXPECT_EQ(fs().erase(name(L"empty"), ZoFileSystem::kDirectory), 0);
}

TEST_F(FileSystem, ATreeThatCannotGoWholeGoesInPart) {
  folder(L"t\\a");
  put(name(L"t\\a\\busy"), "");
  put(name(L"t\\free"), "");
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "removeFile", .error = ERROR_SHARING_VIOLATION});
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), ZoResult::partial);
  EXPECT_EQ(errorText(), messageOf(ERROR_SHARING_VIOLATION))
      << "the reason, not what follows of it";
  files.arm({.fault = Fault::fail, .forEver = true});
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), 1) << "nothing could go";
  files.arm({.fault = Fault::fail, .call = "findNext", .nth = 2});
  EXPECT_NE(fs().erase(name(L"t"), ZoFileSystem::kTree), 0) << "the walk broke off";
  files.arm({});
  EXPECT_EQ(fs().erase(name(L"t"), ZoFileSystem::kTree), 0);
  // What would empty a volume never reaches the platform.
  for (const wchar_t* root : {L"", L"C:\\", L"C:\\x\\..", L"\\\\server\\share\\", L"\\"}) {
    files.arm({});
    EXPECT_EQ(fs().erase(ZoFileName(root), ZoFileSystem::kTree), 1);
    for (const std::string& call : files.calls()) EXPECT_EQ(call, "fullPath");
  }
}

TEST_F(FileSystem, VolumesAnswer) {
  unsigned int serial = 0, longest = 0, flags = 0, free = 0, total = 0;
  ZoString label, system;
  const ZoFileName somewhere = name(L"missing\\file");
  EXPECT_EQ(fs().getVolumeInformation(serial, longest, flags, somewhere, label, system), 0);
  EXPECT_EQ(longest, 255u);
  EXPECT_FALSE(system.isEmpty());
  EXPECT_EQ(fs().getDiskFreeSpace(free, total, somewhere), 0);
  EXPECT_TRUE(free > 0 && free <= total);
  EXPECT_EQ(fs().getDriveType(somewhere), ZoFileSystem::kFixed);
  EXPECT_EQ(fs().getDriveType(ZoFileName(L"Q:\\")), ZoFileSystem::kNoRoot);
  EXPECT_EQ(fs().getDriveType(ZoFileName(L"ftp://h/")), ZoFileSystem::kUnknown);
  ZoArray<ZoFileName> drives;
  EXPECT_EQ(fs().getLogicalDrivesStrings(drives), 0);
  EXPECT_TRUE(drives.contains(ZoFileName(L"C:\\")));
  unsigned int untouched = 77;
  EXPECT_EQ(fs().getVolumeInformation(untouched, untouched, untouched, ZoFileName(L"Q:\\"), label,
                                      system),
            1);
  EXPECT_EQ(fs().getDiskFreeSpace(untouched, untouched, ZoFileName(L"Q:")), 1);
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
  ZoFileName file(L"cd://catalogue/parts/bolt.dwg");
  EXPECT_EQ(fs().getAbsolutePath(file), 0);
  EXPECT_EQ(file, L"E:\\parts\\bolt.dwg");
  ZoFileName missing(L"cd://other/f");
  EXPECT_EQ(fs().getAbsolutePath(missing), 1);
  EXPECT_EQ(missing, L"cd://other/f");
}

TEST_F(FileSystem, AttributesAnswerWithOddities) {
  put(name(L"f"), "");
  EXPECT_EQ(fs().subSetAttributes(name(L"f"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN), 0);
  EXPECT_EQ(fs().getAttributes(name(L"f")) & 0x7, 3u);
  EXPECT_EQ(fs().subSetAttributes(name(L"f"), FILE_ATTRIBUTE_NORMAL), 0);
  EXPECT_EQ(fs().getAttributes(name(L"f")) & 0x7, 0u);
  EXPECT_EQ(fs().getAttributes(ZoFileName(L"http://h/f")), 3u);
  EXPECT_EQ(fs().getAttributes(name(L"missing")), 0u);
}

// Every operation whose call fails: 1, the operation's name, and the error for errorTxt.
TEST_F(FileSystem, EveryFailureIsReportedUnderItsName) {
  RecordingFileSystem service;
  put(name(L"f"), "abc");
  folder(L"d");
  const ZoFileName f = name(L"f"), to = name(L"to"), url(L"http://host/f");
  ZoFileName out;
  ZoString text;
  ZoArray<ZoFileName> names;
  ZoArray<ZoString> texts;
  unsigned int n = 0;
  struct Case {
    const char* call;
    const wchar_t* reported;
    std::function<unsigned int(const ZoFileName&)> run;  // with f, and with a URL
    unsigned int result = 1, withUrl = 3;
  };
  const auto code = [](int result) { return static_cast<unsigned int>(result); };
  const Case cases[] = {
      {"createFolder", L"ZoFileSystemCreateDir",
       [&](auto& x) { return code(service.createDirectory(x)); }},
      {"currentFolder", L"getCurrentDirectory",
       [&](auto&) { return code(service.getCurrentDirectory(out)); }, 1, 0},
      {"setCurrentFolder", L"setCurrentDirectory",
       [&](auto& x) { return code(service.setCurrentDirectory(x)); }},
      {"tempFolder", L"getTempPath", [&](auto&) { return code(service.getTempPath(out)); }, 1, 0},
      {"fullPath", L"getFullPathName",
       [&](auto& x) { return code(service.getFullPathName(x, out)); }},
      {"searchPath", L"searchPath",
       [&](auto& x) { return code(service.searchPath(x, out, ZoFileName())); }},
      {"copy", L"copy", [&](auto& x) { return code(service.copy(x, to)); }},
      {"read", L"append", [&](auto& x) { return code(service.append(x, to)); }},
      {"move", L"move", [&](auto& x) { return code(service.move(x, to)); }},
      {"removeFile", L"erase File",
       [&](auto& x) { return code(service.erase(x, ZoFileSystem::kFile)); }},
      {"removeFolder", L"erase Directory",
       [&](auto& x) { return code(service.erase(x, ZoFileSystem::kDirectory)); }},
      {"findFirst", L"erase", [&](auto& x) { return code(service.erase(x, ZoFileSystem::kTree)); }},
      {"tempName", L"getTempFileName",
       [&](auto& x) { return code(service.getTempFileName(out, x)); }},
      {"attributes", L"getAttributes", [&](auto& x) { return service.getAttributes(x); }, 0},
      {"setAttributes", L"subSetAttributes",
       [&](auto& x) { return code(service.subSetAttributes(x, 0)); }},
      {"volume", L"getVolumeInformation",
       [&](auto& x) { return code(service.getVolumeInformation(n, n, n, x, text, text)); }},
      {"space", L"getDiskFreeSpace",
       [&](auto& x) { return code(service.getDiskFreeSpace(n, n, x)); }},
      {"drives", L"getLogicalDrivesStrings",
       [&](auto&) { return code(service.getLogicalDrivesStrings(names)); }, 1, 0},
      {"drives", L"getLogicalDrivesStrings",
       [&](auto&) { return code(service.getCDRom(names, texts)); }, 1, 0},
      {"setLabel", L"setVolumeLabel",
       [&](auto& x) { return code(service.setVolumeLabel(L"x", x)); }},
  };
  FaultyFiles files;
  DWORD error = 1000;
  for (const Case& c : cases) {
    files.arm({.fault = Fault::fail, .call = c.call, .error = ++error});
    service.operations.clear();
    EXPECT_EQ(c.run(f), c.result) << c.reported;
    EXPECT_EQ(service.operations, Names{c.reported}) << c.call;
    EXPECT_EQ(service.lastError, error) << c.call;
    EXPECT_EQ(service.errorTxt().view(), messageOf(error));
    files.arm({});
    service.operations.clear();
    EXPECT_EQ(c.run(url), c.withUrl) << c.call << " with a URL";
    EXPECT_EQ(service.operations, Names{}) << c.call;
  }
  EXPECT_EQ(bytesOf(f), "abc");
}

// One that fails a single operation and passes all others on.
class NoCopies : public ZoForwardFileSystem {
 public:
  using ZoForwardFileSystem::ZoForwardFileSystem;
  int copy(const ZoFileName&, const ZoFileName&, bool) override { return ZoResult::refused; }
};

TEST_F(FileSystem, AWrapperChangesOneOperationAndServesTheRest) {
  ZoFileSystem& standard = fs();
  ZoSystem::setFileSystem(new NoCopies(standard));
  put(name(L"f"), "abc");
  EXPECT_EQ(fs().copy(name(L"f"), name(L"g"), false), 1);
  EXPECT_EQ(fs().move(name(L"f"), name(L"g")), 0);
  EXPECT_EQ(fs().erase(name(L"missing"), ZoFileSystem::kFile), 1);
  EXPECT_EQ(errorText(), messageOf(ERROR_FILE_NOT_FOUND));
  ZoFileSystem* const installed = &fs();
  ZoSystem::setFileSystem(nullptr);
  delete installed;
}

ZO_TEST_CHILD(killedInFileSystem) {
  const Attached attached;
  const std::wstring what = parent.argument(0);
  const ZoFileName from(parent.argument(1).c_str()), to(parent.argument(2).c_str());
  FaultyFiles files;
  files.arm({.fault = Fault::stop, .nth = std::stoi(parent.argument(3))});
  return what == L"copy" ? ZoSystem::fileSystem().copy(from, to)
                         : ZoSystem::fileSystem().move(from, to);
}

TEST_F(FileSystem, AKilledProcessLeavesTheTargetOldOrComplete) {
  const std::string content(100'000, 'n');
  for (const wchar_t* what : {L"copy", L"move"}) {
    for (const bool there : {false, true}) {
      const bool copies = what == std::wstring(L"copy");
      if (there && !copies) continue;
      int nth = 1, code = kStopped;
      for (; code == kStopped; ++nth) {
        ASSERT_LT(nth, 20);
        put(name(L"from"), content);
        if (there)
          put(name(L"to"), "old");
        else
          DeleteFileW(name(L"to").fullName());
        ChildProcess child(L"killedInFileSystem", {what, name(L"from").fullName(),
                                                   name(L"to").fullName(), std::to_wstring(nth)});
        code = child.wait();
        EXPECT_TRUE(code == kStopped || code == 0) << code;
        const std::string now = bytesOf(name(L"to"));
        EXPECT_TRUE(now == content || now == (there ? "old" : "(none)")) << nth;
        EXPECT_TRUE(bytesOf(name(L"from")) == content || (!copies && now == content)) << nth;
      }
      EXPECT_GT(nth, 2) << "it was killed at least once";
    }
  }
}

}  // namespace
}  // namespace zo::test
