// Each call of the platform that fails gives its operation's result, one report under the
// operation's name, and the error for errorTxt.
#include <zo/files/file.h>
#include <zo/files/file_imp.h>
#include <zo/files/std_file_system.h>
#include <zo/text/containers/array.h>

#include <functional>

#include "file_io/file_fixture.h"

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
  ASSERT_EQ(file.open(f, ZoFile::kReadWrite), 0);
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
  DWORD error = 1000;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.call);
    s.operations.clear();
    files.arm({.fault = Fault::fail, .call = c.call, .error = ++error});
    EXPECT_EQ(c.run(), c.result);
    EXPECT_EQ(s.operations, Names{c.reported});
    EXPECT_EQ(s.errorTxt().view(), messageOf(error));
  }
  EXPECT_EQ(bytesOf(f), "abc");
}

}  // namespace
}  // namespace zo::test
