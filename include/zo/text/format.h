// std::format for strings, where the standard library has it: the format options of texts apply.
//
// Errors:  std::format_error for what is no format of a text, unless it is a literal, which the
//          compiler refuses; and what the output throws.
// Threads: as the text.
#pragma once

#include <zo/config.h>

#include <version>

#if defined(__cpp_lib_format)
#include <zo/text/string.h>

#include <format>

template <>
struct std::formatter<ZoString, wchar_t> : std::formatter<std::wstring_view, wchar_t> {
  template <class Context>
  auto format(const ZoString& text, Context& context) const {
    return std::formatter<std::wstring_view, wchar_t>::format(text.view(), context);
  }
};

template <>
struct std::formatter<ZoSubString, wchar_t> : std::formatter<std::wstring_view, wchar_t> {
  template <class Context>
  auto format(const ZoSubString& text, Context& context) const {
    return std::formatter<std::wstring_view, wchar_t>::format(text.view(), context);
  }
};
#endif
