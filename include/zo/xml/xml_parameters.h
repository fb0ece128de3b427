// What the functions of ZoXMLClass and ZoXMLNode take and do not take.
//
// Errors:  nothing throws.
// Threads: plain values, which see texts of others.
#pragma once

#include <zo/names/not_a_flag.h>
#include <zo/text/text_forms.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace zo {

// A text for a call: wide texts of all kinds. A null pointer is an empty text.
struct XmlTextParameter : std::wstring_view {
  XmlTextParameter() noexcept = default;
  XmlTextParameter(std::wstring_view text) noexcept : std::wstring_view(text) {}
  template <std::same_as<std::nullptr_t> T>
  XmlTextParameter(T) noexcept {}
  template <PointedText T>
    requires(!WidePath<T> && !std::same_as<T, std::nullptr_t>)
  XmlTextParameter(const T& text) noexcept : std::wstring_view(textOf(text)) {}
};

// What C++ would make a truth value of.
template <class T>
concept NoTruthValue = NotAFlag<T> || (std::is_arithmetic_v<T> && !std::same_as<T, bool>);

template <class T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, wchar_t>;

template <WholeNumber T>
[[nodiscard]] constexpr std::uint64_t notNegative(T number) noexcept {
  return number > 0 ? static_cast<std::uint64_t>(number) : 0;
}

}  // namespace zo
