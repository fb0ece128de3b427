#include "support/registry_base.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <stdexcept>

namespace zo::test {

RegistryBase::RegistryBase() {
  static int count = 0;
  path_ = L"Software\\zo-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
          std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
  HKEY key = nullptr;
  DWORD disposition = 0;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                      &key, &disposition) != ERROR_SUCCESS)
    throw std::runtime_error("a registry key for the test cannot be made");
  RegCloseKey(key);
  if (disposition != REG_CREATED_NEW_KEY)
    throw std::runtime_error("the registry key for the test was there already");
}

RegistryBase::~RegistryBase() {
  EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()), ERROR_SUCCESS);
}

}  // namespace zo::test
