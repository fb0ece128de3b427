#include "paths.h"

#include <windows.h>

namespace zolib {
namespace {

constexpr std::wstring_view kSlashes = L"\\/";

}  // namespace

std::wstring shellPath(std::wstring_view path) {
  if (path.starts_with(L'$')) return L"./" + std::wstring(path);  // no macro of a file name
  if (!path.starts_with(L'/') || path.starts_with(L"//")) return std::wstring(path);
  std::wstring root(GetEnvironmentVariableW(L"ZOLIB_ROOT", nullptr, 0), L'\0');
  root.resize(GetEnvironmentVariableW(L"ZOLIB_ROOT", root.data(), static_cast<DWORD>(root.size())));
  return root.append(path);
}

std::wstring joined(std::wstring_view folder, std::wstring_view name) {
  std::wstring result(folder);
  if (!result.empty() && kSlashes.find(result.back()) == kSlashes.npos) result += L'/';
  return result += name;
}

std::wstring_view folderOf(std::wstring_view name) noexcept {
  const std::size_t end = name.find_last_of(kSlashes);
  return end == std::wstring_view::npos ? std::wstring_view() : name.substr(0, end);
}

}  // namespace zolib
