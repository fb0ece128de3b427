#include <gtest/gtest.h>
#include <windows.h>
#include <zo/results.h>
#include <zo/system/dll_version.h>
#include <zo/system/sys_info.h>

#include <filesystem>
#include <functional>
#include <string>

#include "support/printers.h"

namespace {

std::wstring text(const std::function<int(ZoString&)>& ask) {
  ZoString result;
  EXPECT_EQ(ask(result), 0);
  return std::wstring(result.view());
}

// Against what the platform says by another way.
TEST(SysInfo, TellsWhatThePlatformSays) {
  ZoStdSysInfo info;
  EXPECT_EQ(text([&](ZoString& s) { return info.userName(s); }), _wgetenv(L"USERNAME"));
  EXPECT_EQ(text([&](ZoString& s) { return info.machineName(s); }), _wgetenv(L"COMPUTERNAME"));
  const std::wstring locale = text([&](ZoString& s) { return info.localeName(s); });
  EXPECT_EQ(LocaleNameToLCID(locale.c_str(), 0), GetUserDefaultLCID());
  ZoSysVersion version;
  EXPECT_EQ(info.systemVersion(version), 0);
  EXPECT_TRUE(version.major >= 6 && version.build > 0) << version.major;
  const std::wstring library = text([&](ZoString& s) { return info.libraryVersion(s); });
  EXPECT_EQ(std::string(library.begin(), library.end()), zoComVersion());
  unsigned int processors = 0;
  EXPECT_EQ(info.processors(processors), 0);
  EXPECT_GE(processors, 1u);
  const std::wstring longText(30'000, L'v');
  ASSERT_TRUE(SetEnvironmentVariableW(L"ZO_TEST_VARIABLE", longText.c_str()));
  EXPECT_EQ(text([&](ZoString& s) { return info.environment(L"ZO_TEST_VARIABLE", s); }), longText);

  for (int which = ZoSysInfo::kWindows; which <= ZoSysInfo::kUserDocuments; ++which) {
    const auto folder = static_cast<ZoSysInfo::Folder>(which);
    const std::wstring path = text([&](ZoString& s) { return info.folder(folder, s); });
    EXPECT_TRUE(std::filesystem::path(path).is_absolute()) << which;
    EXPECT_TRUE(path.size() <= 3 || path.back() != L'\\') << which;
  }
  ZoString none(L"untouched");
  EXPECT_EQ(info.folder(static_cast<ZoSysInfo::Folder>(99), none), ZoResult::refused);
  EXPECT_EQ(info.environment(L"ZO_TEST_NONE", none), ZoResult::refused);
  EXPECT_EQ(info.fileVersion(L"Z:\\no such file", none), ZoResult::refused);
  EXPECT_EQ(none, ZoString(L"untouched"));
}

}  // namespace
