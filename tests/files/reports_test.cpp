// Each call of the platform that fails gives its operation's result, one report under the
// operation's name, and the error for errorTxt.
#include <zo/files/file.h>
#include <zo/files/file_imp.h>
#include <zo/files/file_save.h>
#include <zo/files/file_transfer.h>
#include <zo/files/find_file.h>
#include <zo/files/std_file_system.h>
#include <zo/text/containers/array.h>

#include <functional>

#include "files/file_fixture.h"

namespace zo::test {
namespace {

using Reports = FileTest;

// The standard service; keeps what errorIO was told.
class RecordingFileSystem : public ZoStdFileSystem {
 public:
  int errorIO(const wchar_t* operation) override {
    const int result = ZoStdFileSystem::errorIO(operation);
    operations.emplace_back(operation);
    return result;
  }
  std::vector<std::wstring> operations;
};

TEST_F(Reports, NameTheOperation) {
  const ZoFileName f = name(L"f"), to = name(L"to");
  put(f, "abc");
  RecordingFileSystem s;
  ZoFile file(new ZoFileImp(&s));
  ZoFileName out;
  ZoString text;
  ZoArray<ZoFileName> names;
  unsigned int n = 0;
  char byte = 'x';
  struct Case {
    const char* call;
    const wchar_t* reported;
    std::function<std::int64_t()> run;
    std::int64_t result = 1;
  } const cases[] = {
      {"read", L"read", [&] { return file.read(&byte, 1); }, 0},
      {"write", L"write", [&] { return file.write(&byte, 1); }, 0},
      {"seek", L"seek", [&] { return file.seek(1); }, -1},
      {"setEnd", L"setEndOfFile", [&] { return file.setEndOfFile(); }},
      {"lock", L"lockRange", [&] { return file.lockRange(0, 1); }},
      {"unlock", L"unlockRange", [&] { return file.unlockRange(0, 1); }},
      {"flush", L"flush", [&] { return file.flush(); }},
      {"size", L"size", [&] { return file.size(); }, -1},
      {"information", L"attributes", [&] { return file.attributes(); }, 0},
      {"setTimes", L"setLastWriteTime", [&] { return file.setLastWriteTime({}); }},
      {"duplicate", L"open", [&] { return ZoFile(file).isOpen(); }, 0},
      {"reopen", L"open", [&] { return ZoFile(file, 0x80000000U).isOpen(); }, 0},
      {"close", L"close", [&] { return file.close(); }},
      {"create", L"open", [&] { return file.open(f); }},
      {"create", L"createTemp", [&] { return file.createTemp(out); }},
      {"createFolder", L"ZoFileSystemCreateDir", [&] { return s.createDirectory(f); }},
      {"setCurrentFolder", L"setCurrentDirectory", [&] { return s.setCurrentDirectory(f); }},
      {"fullPath", L"getFullPathName", [&] { return s.getFullPathName(f, out); }},
      {"searchPath", L"searchPath", [&] { return s.searchPath(f, out, ZoFileName()); }},
      {"copy", L"copy", [&] { return s.copy(f, to); }},
      {"read", L"append", [&] { return s.append(f, to); }},
      {"move", L"move", [&] { return s.move(f, to); }},
      {"removeFile", L"erase File", [&] { return s.erase(f, s.kFile); }},
      {"removeFolder", L"erase Directory", [&] { return s.erase(f, s.kDirectory); }},
      {"findFirst", L"erase", [&] { return s.erase(f, s.kTree); }},
      {"tempName", L"getTempFileName", [&] { return s.getTempFileName(out, f); }},
      {"attributes", L"getAttributes", [&] { return s.getAttributes(f); }, 0},
      {"setAttributes", L"subSetAttributes", [&] { return s.subSetAttributes(f, 0); }},
      {"volume", L"getVolumeInformation",
       [&] { return s.getVolumeInformation(n, n, n, f, text, text); }},
      {"space", L"getDiskFreeSpace", [&] { return s.getDiskFreeSpace(n, n, f); }},
      {"drives", L"getLogicalDrivesStrings", [&] { return s.getLogicalDrivesStrings(names); }},
  };
  FaultyFiles files;
  for (const bool named : {true, false}) {  // a failure without an error is no success
    ASSERT_EQ(file.open(f, ZoFile::kReadWrite), 0);
    for (const Case& c : cases) {
      SCOPED_TRACE(c.call);
      s.operations.clear();
      const DWORD error = named ? static_cast<DWORD>(1000 + (&c - cases)) : ERROR_SUCCESS;
      files.arm({.fault = Fault::fail, .call = c.call, .error = error});
      EXPECT_EQ(c.run(), c.result);
      EXPECT_EQ(s.operations, Names{c.reported});
      EXPECT_EQ(s.errorTxt().view(), messageOf(named ? error : ERROR_GEN_FAILURE));
    }
  }
  EXPECT_EQ(bytesOf(f), "abc");
}

TEST_F(Reports, HaveAReasonWhereThePlatformIsNotAsked) {
  const ZoFileName url(L"http://host/f"), f = name(L"f");
  put(f, "abc");
  ZoFile closed, moved, open;
  ZoFile(std::move(moved));
  ASSERT_EQ(open.open(f), 0);
  ZoFileName out;
  char byte = 'x';
  ZoFileSave save;
  ZoFindFile find;
  ZoFileTransfer transfer;
  transfer.onProgress([](const auto&) { return false; });
  transfer.add(f, name(L"to"));
  struct Case {
    std::function<std::int64_t()> run;
    std::int64_t result = 1;
    DWORD error = ERROR_NOT_SUPPORTED;
  };
  std::vector<Case> cases = {
      {[&] { return open.read(nullptr, 1); }, 0, ERROR_INVALID_PARAMETER},
      {[&] { return open.write(nullptr, 1); }, 0, ERROR_INVALID_PARAMETER},
      {[&] { return open.lockRange(-1, 1); }, 1, ERROR_INVALID_PARAMETER},
      {[&] { return open.getCFileHandle(L"x") != nullptr; }, 0, ERROR_INVALID_PARAMETER},
      {[&] { return open.getCFileHandle(true, true) != nullptr; }, 0, ERROR_ACCESS_DENIED},
      {[&] { return open.createTemp(out, 0, ZoFile::kOpenExisting); }, 1, ERROR_INVALID_PARAMETER},
      {[&] { return save.commit(); }, 1, ERROR_INVALID_HANDLE},
      {[&] { return save.open(url); }, 3},
      {[&] { return find.open(url); }, 3},
      {[&] { return transfer.run(ZoFileTransfer::kCopy); }, 1, ERROR_CANCELLED},
      {[&] { return fs().createDirectory(url); }, 3},
      {[&] { return fs().setCurrentDirectory(url); }, 3},
      {[&] { return fs().getFullPathName(url, out); }, 3},
      {[&] { return fs().searchPath(url, out, f); }, 3},
      {[&] { return fs().copy(f, url); }, 3},
      {[&] { return fs().append(url, f); }, 3},
      {[&] { return fs().move(f, url); }, 3},
      {[&] { return fs().erase(url, ZoFileSystem::kFile); }, 3},
      {[&] { return fs().getTempFileName(out, url); }, 3},
      {[&] { return fs().getAttributes(url); }, 3},
      {[&] { return fs().subSetAttributes(url, 0); }, 3},
      {[&] { return fs().setVolumeLabel(L"x", url); }, 3},
      {[&] { return fs().getRemote(url, out); }, 3},
      {[&] { return fs().putRemote(f, url); }, 3},
  };
  for (ZoFile* file : {&closed, &moved}) {
    const auto add = [&](std::function<std::int64_t()> run, std::int64_t result) {
      cases.push_back({std::move(run), result, ERROR_INVALID_HANDLE});
    };
    add([=, &byte] { return file->read(&byte, 1); }, 0);
    add([=, &byte] { return file->write(&byte, 1); }, 0);
    add([=] { return file->seek(0); }, -1);
    add([=] { return file->size(); }, -1);
    add([=] { return file->setEndOfFile(); }, 1);
    add([=] { return file->flush(); }, 1);
    add([=] { return file->unlockRange(0, 1); }, 1);
    add([=] { return file->attributes(); }, 0);
    add([=] { return file->creationTime().dwLowDateTime; }, 0);
    add([=] { return file->setLastAccessTime({}); }, 1);
    add([=] { return file->getCFileHandle(L"rb") != nullptr; }, 0);
  }
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases.data());
    SetLastError(ERROR_SUCCESS);
    fs().errorIO(L"");
    EXPECT_EQ(c.run(), c.result);
    expectError(c.error);
  }
}

// What the library does with files needs no service: only reasons are not kept without one.
TEST(FilesWithoutServices, WorkBeforeAttachAndAfterDetach) {
  const TempFolder folder;
  const ZoFileName from(folder.path() / L"from"), to(folder.path() / L"to");
  for (const bool wasAttached : {false, true}) {
    if (wasAttached) const Attached attached;
    ZoFile file;
    EXPECT_EQ(file.open(folder.path() / L"missing"), 1);
    EXPECT_EQ(file.read(nullptr, 1), 0U);
    ZoFileSave save;
    EXPECT_EQ(save.open(from), 0);
    EXPECT_EQ(save.file().write("abc", 3), 3U);
    EXPECT_EQ(save.commit(), 0);
    EXPECT_EQ(save.commit(), 1);
    ZoFindFile find;
    EXPECT_EQ(find.open(folder.path() / L"none" / L"*"), 1);
    ZoFileTransfer transfer;
    transfer.add(from, folder.path() / L"new" / L"to");
    transfer.add(to, to);
    EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), ZoResult::partial);
    EXPECT_EQ(transfer.failures()[0].reason.view(), messageOf(ERROR_FILE_NOT_FOUND));
  }
}

}  // namespace
}  // namespace zo::test
