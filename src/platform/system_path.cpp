#include "platform/system_path.h"

#include <windows.h>

#include <cwchar>

namespace zo {
namespace {

// The platform's limit for folders, with room for a file of the old short form; that for files is
// MAX_PATH.
constexpr std::size_t kLongestPlain = MAX_PATH - 12 - 1;

bool isDelimiter(wchar_t c) { return c == L'\\' || c == L'/'; }

bool isAbsolute(std::wstring_view name) {
  if (name.size() < 3) return false;
  if (isDelimiter(name[0]) && isDelimiter(name[1])) return true;
  return name[1] == L':' && isDelimiter(name[2]);
}

bool hasPrefix(std::wstring_view name) {
  return name.starts_with(LR"(\\?\)") || name.starts_with(LR"(\\.\)");
}

std::wstring fullPath(const wchar_t* name) {
  return platformText([name](DWORD size, wchar_t* buffer) {
    return GetFullPathNameW(name, size, buffer, nullptr);
  });
}

}  // namespace

SystemPath::SystemPath(const wchar_t* name) : name_(name) {
  const std::wstring_view text = name;
  if (text.empty() || hasPrefix(text)) return;
  if (text.size() <= kLongestPlain) {
    if (isAbsolute(text)) return;
    if (GetFullPathNameW(name, 0, nullptr, nullptr) <= kLongestPlain + 1) return;
  }
  const std::wstring full = fullPath(name);
  if (full.empty() || hasPrefix(full)) return;
  const bool network = full.starts_with(LR"(\\)");
  long_ = network ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

}  // namespace zo
