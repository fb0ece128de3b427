// A registry key of its own for a test, below the current user's software, deleted with all that is
// in it at the end. No other run and no other test has it.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace zo::test {

class RegistryBase {
 public:
  RegistryBase() {
    static int count = 0;
    path_ = L"Software\\zo-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
            std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, path_.c_str(), &key), ERROR_SUCCESS);
    RegCloseKey(key);
  }
  ~RegistryBase() { EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()), ERROR_SUCCESS); }
  RegistryBase(const RegistryBase&) = delete;
  RegistryBase& operator=(const RegistryBase&) = delete;

  // From the current user's root, without a delimiter at the end.
  const std::wstring& path() const { return path_; }
  std::wstring path(const std::wstring& below) const { return path_ + L"\\" + below; }

 private:
  std::wstring path_;
};

}  // namespace zo::test
