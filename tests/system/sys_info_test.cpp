#include <gtest/gtest.h>
#include <windows.h>
#include <zo/results.h>
#include <zo/system/dll_version.h>
#include <zo/system/sys_info.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>

#include "support/child_process.h"
#include "support/printers.h"
#include "support/temp_folder.h"

namespace {

std::wstring environment(const wchar_t* name) {
  const wchar_t* const value = _wgetenv(name);
  return value ? value : L"";
}

std::wstring text(const std::function<int(ZoString&)>& ask) {
  ZoString result;
  EXPECT_EQ(ask(result), 0);
  return std::wstring(result.view());
}

std::wstring folder(ZoSysInfo::Folder which) {
  return text([which](ZoString& path) { return ZoStdSysInfo().folder(which, path); });
}

bool isSameFile(const std::wstring& a, const std::wstring& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error);
}

// Against what the platform says by another way.
TEST(SysInfo, NamesAreThePlatforms) {
  ZoStdSysInfo info;
  EXPECT_EQ(text([&](ZoString& s) { return info.userName(s); }), environment(L"USERNAME"));
  EXPECT_EQ(text([&](ZoString& s) { return info.machineName(s); }), environment(L"COMPUTERNAME"));
  EXPECT_FALSE(text([&](ZoString& s) { return info.machineFullName(s); }).empty());
  const std::wstring locale = text([&](ZoString& s) { return info.localeName(s); });
  EXPECT_EQ(LocaleNameToLCID(locale.c_str(), 0), GetUserDefaultLCID());
}

TEST(SysInfo, FoldersAndFilesAreThere) {
  EXPECT_TRUE(isSameFile(folder(ZoSysInfo::kWindows), environment(L"SystemRoot")));
  EXPECT_TRUE(isSameFile(folder(ZoSysInfo::kTemporary), environment(L"TEMP")));
  EXPECT_TRUE(isSameFile(folder(ZoSysInfo::kUserSettings), environment(L"APPDATA")));
  EXPECT_TRUE(isSameFile(folder(ZoSysInfo::kUserLocal), environment(L"LOCALAPPDATA")));
  EXPECT_TRUE(isSameFile(folder(ZoSysInfo::kCommonSettings), environment(L"ProgramData")));
  EXPECT_TRUE(std::filesystem::exists(folder(ZoSysInfo::kSystem) + L"\\kernel32.dll"));
  EXPECT_TRUE(isSameFile(folder(ZoSysInfo::kCurrent), L"."));
  for (int which = ZoSysInfo::kWindows; which <= ZoSysInfo::kUserDocuments; ++which) {
    const std::wstring path = folder(static_cast<ZoSysInfo::Folder>(which));
    EXPECT_TRUE(std::filesystem::path(path).is_absolute()) << which;
    EXPECT_TRUE(path.size() <= 3 || path.back() != L'\\') << which;
  }
  // The objects are linked into this program, so that it is the library's file, too.
  ZoStdSysInfo info;
  const std::wstring program = text([&](ZoString& s) { return info.programFile(s); });
  EXPECT_TRUE(isSameFile(program, _wpgmptr));
  EXPECT_EQ(text([&](ZoString& s) { return info.libraryFile(s); }), program);
  EXPECT_EQ(std::filesystem::path(program).parent_path(), folder(ZoSysInfo::kProgram));
  EXPECT_EQ(folder(ZoSysInfo::kLibrary), folder(ZoSysInfo::kProgram));

  ZoString path(L"untouched");
  EXPECT_EQ(info.folder(static_cast<ZoSysInfo::Folder>(99), path), ZoResult::refused);
  EXPECT_EQ(info.folder(static_cast<ZoSysInfo::Folder>(-1), path), ZoResult::refused);
  EXPECT_EQ(path, ZoString(L"untouched"));
}

ZO_TEST_CHILD(current_folder) {
  if (!SetCurrentDirectoryW(parent.argument(0).c_str())) return 2;
  return folder(ZoSysInfo::kCurrent) == parent.argument(1) ? 0 : 1;
}

TEST(SysInfo, TheCurrentFolderMayBeLongAndMayBeARoot) {
  const zo::test::TempFolder temporary;
  const std::filesystem::path deep =
      temporary.path() / std::wstring(100, L'd') / std::wstring(100, L'e');
  std::filesystem::create_directories(deep);
  for (const std::filesystem::path& path : {deep, temporary.path().root_path()}) {
    zo::test::ChildProcess child(L"current_folder", {path.wstring(), path.wstring()});
    EXPECT_EQ(child.wait(), 0);
  }
}

TEST(SysInfo, VersionsAreTrue) {
  ZoStdSysInfo info;
  ZoSysVersion version;
  EXPECT_EQ(info.systemVersion(version), 0);
  EXPECT_TRUE(version.major >= 6 && version.build > 0) << version.major;
  std::string library;
  for (const wchar_t c : text([&](ZoString& s) { return info.libraryVersion(s); }))
    library += static_cast<char>(c);
  EXPECT_EQ(library, zoComVersion());
  const std::wstring kernel = folder(ZoSysInfo::kSystem) + L"\\kernel32.dll";
  const std::wstring file = text([&](ZoString& s) { return info.fileVersion(kernel.c_str(), s); });
  EXPECT_EQ(std::count(file.begin(), file.end(), L'.'), 3);
  ZoString none(L"untouched");
  EXPECT_EQ(info.fileVersion(L"Z:\\no such file", none), ZoResult::refused);
  EXPECT_EQ(info.fileVersion(nullptr, none), ZoResult::refused);
  EXPECT_EQ(none, ZoString(L"untouched"));
}

TEST(SysInfo, TheMachineHasProcessorsAndMemory) {
  ZoStdSysInfo info;
  unsigned int processors = 0;
  EXPECT_EQ(info.processors(processors), 0);
  SYSTEM_INFO system = {};
  GetSystemInfo(&system);
  EXPECT_TRUE(processors >= 1 && processors <= system.dwNumberOfProcessors);
  unsigned long long memory = 0;
  EXPECT_EQ(info.memory(memory), 0);
  EXPECT_GE(memory, 64ull << 20);
}

TEST(SysInfo, EnvironmentVariablesOfAnyLength) {
  ZoStdSysInfo info;
  ZoString value(L"untouched");
  EXPECT_EQ(info.environment(L"ZO_TEST_NONE", value), ZoResult::refused);
  EXPECT_EQ(info.environment(nullptr, value), ZoResult::refused);
  EXPECT_EQ(value, ZoString(L"untouched"));
  for (const size_t length : {size_t{1}, size_t{MAX_PATH} - 1, size_t{MAX_PATH}, size_t{30'000}}) {
    const std::wstring set(length, L'v');
    ASSERT_TRUE(SetEnvironmentVariableW(L"ZO_TEST_VARIABLE", set.c_str()));
    EXPECT_EQ(info.environment(L"ZO_TEST_VARIABLE", value), 0);
    EXPECT_TRUE(value.view() == set) << length;
  }
  ASSERT_TRUE(SetEnvironmentVariableW(L"ZO_TEST_VARIABLE", L""));
  EXPECT_EQ(info.environment(L"ZO_TEST_VARIABLE", value), 0);
  EXPECT_TRUE(value.isEmpty());
  SetEnvironmentVariableW(L"ZO_TEST_VARIABLE", nullptr);
}

TEST(SysInfoService, GoesWithTheLibraryOnly) {
  ZoSysInfo* const info = new ZoStdSysInfo;
  EXPECT_EQ(info->release(nullptr), 1);
  EXPECT_EQ(info->release(L"other"), 1);
  EXPECT_EQ(info->release(L"zo_COM"), 0);
}

}  // namespace
