// A registry key of its own for a test, below the current user's software, deleted with all that is
// in it at the end. No other run and no other test has it.
#pragma once

#include <string>

namespace zo::test {

class RegistryBase {
 public:
  RegistryBase();
  ~RegistryBase();
  RegistryBase(const RegistryBase&) = delete;
  RegistryBase& operator=(const RegistryBase&) = delete;

  // From the current user's root, without a delimiter at the end.
  const std::wstring& path() const { return path_; }
  std::wstring path(const std::wstring& below) const { return path_ + L"\\" + below; }

 private:
  std::wstring path_;
};

}  // namespace zo::test
