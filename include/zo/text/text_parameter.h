// A parameter for texts that are looked at or copied: wide texts of all kinds but file paths. A
// null pointer is an empty text, which a plain std::wstring_view would read.
//
// Errors:  nothing throws.
// Threads: a plain view, which sees a text of another until the call returns.
#pragma once

#include <zo/text/text_forms.h>

#include <concepts>
#include <cstddef>
#include <string_view>

namespace zo {

struct TextParameter : std::wstring_view {
  TextParameter() noexcept = default;
  TextParameter(std::wstring_view text) noexcept : std::wstring_view(text) {}
  template <std::same_as<std::nullptr_t> T>
  TextParameter(T) noexcept {}
  template <PointedText T>
    requires(!WidePath<T> && !std::same_as<T, std::nullptr_t>)
  TextParameter(const T& text) noexcept : std::wstring_view(textOf(text)) {}
};

}  // namespace zo
