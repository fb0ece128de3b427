// What the functions of ZoXMLClass and ZoXMLNode take and do not take.
//
// Errors:  nothing throws.
// Threads: plain values, which see texts of others.
#pragma once

#include <zo/names/no_truth_value.h>
#include <zo/text/text_parameter.h>

#include <concepts>
#include <cstdint>

namespace zo {

using XmlTextParameter = TextParameter;

template <class T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, wchar_t>;

template <WholeNumber T>
[[nodiscard]] constexpr std::uint64_t notNegative(T number) noexcept {
  return number > 0 ? static_cast<std::uint64_t>(number) : 0;
}

}  // namespace zo
