// Where a program's text stands, for reports of errors:
//
//   ZoSystem::error().warning(ZO_FILE, __LINE__, L"%d parts left out", count);
//   throw-side: zoThrow(L"No such part");  // file, function and line by itself
#pragma once

#include <zo/config.h>

#include <string_view>

namespace zo {

// The name behind the last delimiter: what lies before it is the matter of the machine that
// compiled it.
consteval const wchar_t* baseName(const wchar_t* path) {
  const std::size_t before = std::wstring_view(path).find_last_of(L"/\\");
  return before == std::wstring_view::npos ? path : path + before + 1;
}

}  // namespace zo

// The name of this source file, without its folders, as a constant wide text.
#define ZO_FILE ::zo::baseName(ZO_WIDE_TEXT(__FILE__))
#define ZO_WIDE_TEXT(text) ZO_WIDE_TEXT_2(text)
#define ZO_WIDE_TEXT_2(text) L##text
