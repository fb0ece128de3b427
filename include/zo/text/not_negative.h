// A parameter for numbers that are never negative: sizes, ages, code pages. C++ would make a very
// large number of -1 in silence. What stands in the call is looked at by the compiler; a variable
// must be of an unsigned type that fits.
//
// Errors, Threads: as a number has them.
#pragma once

#include <zo/config.h>

#include <concepts>
#include <utility>

namespace zo {

template <class T>
concept PlainInteger = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
                       !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
                       !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

// No number for the compiler to take.
inline void negativeOrTooLarge() noexcept {}

template <std::unsigned_integral T>
class NotNegative {
 public:
  template <PlainInteger N>
    requires(std::unsigned_integral<N> && sizeof(N) <= sizeof(T))
  constexpr NotNegative(N number) noexcept : number_(number) {}
  template <PlainInteger N>
    requires std::signed_integral<N>
  consteval NotNegative(N number) noexcept : number_(static_cast<T>(number)) {
    if (number < 0 || !std::in_range<T>(number)) negativeOrTooLarge();
  }
  constexpr operator T() const noexcept { return number_; }

 private:
  T number_;
};

}  // namespace zo
