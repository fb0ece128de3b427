#include <windows.h>
#include <zo/host/sec_registry.h>

#include <utility>

#include "platform/registry_path.h"

namespace {

// Documented are 255 characters for a key's name; one more has been seen.
constexpr DWORD kLongestKeyName = 256;
constexpr DWORD kLongestValueName = 16383;

bool succeeded(LSTATUS status) noexcept {
  SetLastError(static_cast<DWORD>(status));
  return status == ERROR_SUCCESS;
}

// Asks for the name at an index; the buffer holds the longest that there can be.
template <class Ask>
bool enumerate(DWORD longest, ZoString& name, Ask ask) {
  std::wstring buffer(longest + 1, L'\0');
  DWORD length = longest + 1;
  if (!succeeded(ask(buffer.data(), &length))) return false;
  name = std::wstring_view(buffer.data(), length);
  return true;
}

}  // namespace

bool SECRegistry::Connect(HKEY root) noexcept {
  Close();
  root_ = root;
  return succeeded(root ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}

bool SECRegistry::Open(const wchar_t* path, CreatePermissions access) {
  Close();
  return succeeded(
      RegOpenKeyExW(root_, zo::withoutEmptyLevels(zo::textOf(path)).c_str(), 0, access, &m_hKey));
}

bool SECRegistry::Create(const wchar_t* path, const wchar_t* className, CreateOptions options,
                         CreatePermissions access) {
  Close();
  // The platform takes a class name that it does not change through a pointer to variable text.
  std::wstring name(zo::textOf(className));
  return succeeded(RegCreateKeyExW(root_, zo::withoutEmptyLevels(zo::textOf(path)).c_str(), 0,
                                   className ? name.data() : nullptr, options, access, nullptr,
                                   &m_hKey, nullptr));
}

bool SECRegistry::Close() noexcept {
  HKEY open = std::exchange(m_hKey, nullptr);
  return succeeded(open ? RegCloseKey(open) : ERROR_INVALID_HANDLE);
}

bool SECRegistry::QueryValue(const wchar_t* name, KeyValueTypes& type, unsigned char* buffer,
                             unsigned long& size) noexcept {
  DWORD number = REG_NONE;
  const bool found = succeeded(RegQueryValueExW(m_hKey, name, nullptr, &number, buffer, &size));
  type = static_cast<KeyValueTypes>(number);
  return found;
}

bool SECRegistry::SetValue(const wchar_t* name, unsigned long value) noexcept {
  return SetValue(name, typeDoubleWord, reinterpret_cast<const unsigned char*>(&value),
                  sizeof value);
}

bool SECRegistry::SetValue(const wchar_t* name, KeyValueTypes type, const unsigned char* data,
                           unsigned long size) noexcept {
  return succeeded(RegSetValueExW(m_hKey, name, 0, type, data, size));
}

bool SECRegistry::DeleteValue(const wchar_t* name) noexcept {
  return succeeded(RegDeleteValueW(m_hKey, name));
}

bool SECRegistry::EnumerateKeys(unsigned long index, ZoString& name) {
  return enumerate(kLongestKeyName, name, [&](wchar_t* buffer, DWORD* length) {
    return RegEnumKeyExW(m_hKey, index, buffer, length, nullptr, nullptr, nullptr, nullptr);
  });
}

bool SECRegistry::EnumerateValues(unsigned long index, ZoString& name, KeyValueTypes& type) {
  return enumerate(kLongestValueName, name, [&](wchar_t* buffer, DWORD* length) {
    DWORD number = REG_NONE;
    const LSTATUS status =
        RegEnumValueW(m_hKey, index, buffer, length, nullptr, &number, nullptr, nullptr);
    type = static_cast<KeyValueTypes>(number);
    return status;
  });
}

bool SECRegistry::DeleteKey(const wchar_t* path, bool recursive) {
  const std::wstring key = zo::withoutEmptyLevels(zo::textOf(path));
  if (key.empty()) return succeeded(ERROR_INVALID_PARAMETER);
  return succeeded(recursive ? RegDeleteTreeW(root_, key.c_str())
                             : RegDeleteKeyW(root_, key.c_str()));
}
