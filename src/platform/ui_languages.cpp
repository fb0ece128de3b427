#include "platform/ui_languages.h"

#include <windows.h>

#include <cwchar>

namespace zo {

std::vector<std::wstring> uiLanguages() {
  std::vector<std::wstring> languages;
  ULONG count = 0, size = 0;
  if (!GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, nullptr, &size)) return languages;
  std::wstring list(size, L'\0');
  if (!GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, list.data(), &size)) return languages;
  // One behind the other, each with a zero, and an empty one at the end.
  for (const wchar_t* tag = list.c_str(); *tag; tag += std::wcslen(tag) + 1)
    languages.emplace_back(tag);
  return languages;
}

}  // namespace zo
