// Names as the platform's file functions take them.
#include "platform/system_path.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <utility>

namespace zo {
namespace {

std::wstring passed(const std::wstring& name) {
  const SystemPath path(name.c_str());
  return static_cast<const wchar_t*>(path);
}

TEST(SystemPath, OnlyLongNamesAreRewritten) {
  const std::wstring level(100, L'd');
  const std::wstring deep = level + L"\\" + level + L"\\" + level;
  for (const wchar_t* as : {L"", L"C:/dir/../f", L"C:f", L"..\\f", L"ftp://host/f"})
    EXPECT_EQ(passed(as), as);
  const std::pair<std::wstring, std::wstring> rewritten[] = {
      {L"C:\\" + deep, L"\\\\?\\C:\\" + deep},
      {L"C:/x/../" + deep + L"/./f", L"\\\\?\\C:\\" + deep + L"\\f"},
      {L"\\\\server\\share\\" + deep, L"\\\\?\\UNC\\server\\share\\" + deep},
  };
  for (const auto& [name, expected] : rewritten) EXPECT_EQ(passed(name), expected);
  for (const std::wstring prefix : {L"\\\\?\\C:\\", L"\\\\.\\C:\\"})
    EXPECT_EQ(passed(prefix + deep), prefix + deep) << "as its author wants it";
  EXPECT_TRUE(passed(deep).starts_with(L"\\\\?\\") && passed(deep).ends_with(deep)) << "relative";
  // At the limit of the plain form for folders, 247 characters.
  const std::wstring head = L"C:\\" + level + L"\\" + level + L"\\";
  const std::wstring longest = head + std::wstring(247 - head.size(), L'f');
  EXPECT_EQ(passed(longest), longest);
  EXPECT_EQ(passed(longest + L"f"), L"\\\\?\\" + longest + L"f");
}

}  // namespace
}  // namespace zo
