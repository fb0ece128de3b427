#include <gtest/gtest.h>
#include <windows.h>
#include <zo/results.h>
#include <zo/system/dll_version.h>
#include <zo/system/sys_info.h>
#include <zo/version.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "support/child_process.h"
#include "support/temp_folder.h"

namespace {

std::wstring environment(const wchar_t* name) {
  const wchar_t* const value = _wgetenv(name);
  return value ? value : L"";
}

// What the service answers to one of its questions.
template <class Ask, class... Arguments>
std::wstring text(Ask ask, Arguments... arguments) {
  ZoStdSysInfo info;
  ZoString result;
  EXPECT_EQ((info.*ask)(arguments..., result), 0);
  return std::wstring(result.view());
}
std::wstring folder(ZoSysInfo::Folder which) { return text(&ZoSysInfo::folder, which); }

bool isSameFile(const std::wstring& a, const std::wstring& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error);
}

// Against what the platform says by another way.
TEST(SysInfo, TellsWhatThePlatformSaysByAnotherWay) {
  EXPECT_EQ(text(&ZoSysInfo::userName), environment(L"USERNAME"));
  EXPECT_EQ(text(&ZoSysInfo::machineName), environment(L"COMPUTERNAME"));
  EXPECT_FALSE(text(&ZoSysInfo::machineFullName).empty());
  EXPECT_EQ(LocaleNameToLCID(text(&ZoSysInfo::localeName).c_str(), 0), GetUserDefaultLCID());
  EXPECT_STREQ(zoComVersion(), ZO_COM_VERSION);
  const std::string version = ZO_COM_VERSION;
  EXPECT_EQ(text(&ZoSysInfo::libraryVersion), std::wstring(version.begin(), version.end()));
  const std::wstring kernel = folder(ZoSysInfo::kSystem) + L"\\kernel32.dll";
  const std::wstring file = text(&ZoSysInfo::fileVersion, kernel.c_str());
  EXPECT_EQ(std::count(file.begin(), file.end(), L'.'), 3);

  ZoStdSysInfo info;
  ZoSysVersion system;
  EXPECT_EQ(info.systemVersion(system), 0);
  EXPECT_TRUE(system.major >= 6 && system.build > 0) << system.major;
  SYSTEM_INFO machine = {};
  GetSystemInfo(&machine);
  unsigned int processors = 0;
  EXPECT_EQ(info.processors(processors), 0);
  EXPECT_TRUE(processors >= 1 && processors <= machine.dwNumberOfProcessors);
  unsigned long long memory = 0;
  EXPECT_EQ(info.memory(memory), 0);
  EXPECT_GE(memory, 64ull << 20);
}

TEST(SysInfo, FoldersAndFilesAreThere) {
  const std::pair<ZoSysInfo::Folder, std::wstring> folders[] = {
      {ZoSysInfo::kWindows, environment(L"SystemRoot")},
      {ZoSysInfo::kSystem, environment(L"SystemRoot") + L"\\system32"},
      {ZoSysInfo::kTemporary, environment(L"TEMP")},
      {ZoSysInfo::kUserSettings, environment(L"APPDATA")},
      {ZoSysInfo::kUserLocal, environment(L"LOCALAPPDATA")},
      {ZoSysInfo::kCommonSettings, environment(L"ProgramData")},
      {ZoSysInfo::kCurrent, L"."}};
  for (const auto& [which, path] : folders) EXPECT_TRUE(isSameFile(folder(which), path)) << which;
  for (int which = ZoSysInfo::kWindows; which <= ZoSysInfo::kUserDocuments; ++which) {
    const std::wstring path = folder(static_cast<ZoSysInfo::Folder>(which));
    EXPECT_TRUE(std::filesystem::path(path).is_absolute()) << which;
    EXPECT_TRUE(path.size() <= 3 || path.back() != L'\\') << which;
  }
  // The objects are linked into this program, so that it is the library's file, too.
  const std::wstring program = text(&ZoSysInfo::programFile);
  EXPECT_TRUE(isSameFile(program, _wpgmptr));
  EXPECT_EQ(text(&ZoSysInfo::libraryFile), program);
  EXPECT_EQ(std::filesystem::path(program).parent_path(), folder(ZoSysInfo::kProgram));
  EXPECT_EQ(folder(ZoSysInfo::kLibrary), folder(ZoSysInfo::kProgram));
}

ZO_TEST_CHILD(current_folder) {
  if (!SetCurrentDirectoryW(parent.argument(0).c_str())) return 2;
  return folder(ZoSysInfo::kCurrent) == parent.argument(0) ? 0 : 1;
}

TEST(SysInfo, TheCurrentFolderMayBeLongAndMayBeARoot) {
  const zo::test::TempFolder temporary;
  const auto deep = temporary.path() / std::wstring(100, L'd') / std::wstring(100, L'e');
  std::filesystem::create_directories(deep);
  for (const std::filesystem::path& path : {deep, temporary.path().root_path()})
    EXPECT_EQ(zo::test::ChildProcess(L"current_folder", {path.wstring()}).wait(), 0);
}

TEST(SysInfo, EnvironmentVariablesOfAnyLengthAndWhatIsNotThere) {
  ZoStdSysInfo info;
  ZoString value(L"untouched");
  for (const wchar_t* none : {L"ZO_TEST_NONE", static_cast<const wchar_t*>(nullptr)}) {
    EXPECT_EQ(info.environment(none, value), ZoResult::refused);
    EXPECT_EQ(info.fileVersion(none, value), ZoResult::refused);
  }
  for (const int which : {99, -1})
    EXPECT_EQ(info.folder(static_cast<ZoSysInfo::Folder>(which), value), ZoResult::refused);
  EXPECT_TRUE(value.view() == L"untouched");
  for (const size_t length : {0, 1, MAX_PATH - 1, MAX_PATH, 30'000}) {
    const std::wstring set(length, L'v');
    ASSERT_TRUE(SetEnvironmentVariableW(L"ZO_TEST_VARIABLE", set.c_str()));
    EXPECT_EQ(info.environment(L"ZO_TEST_VARIABLE", value), 0);
    EXPECT_TRUE(value.view() == set) << length;
  }
  SetEnvironmentVariableW(L"ZO_TEST_VARIABLE", nullptr);
}

}  // namespace
