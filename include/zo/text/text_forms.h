// The forms of text that ZoString takes besides its own, and what it refuses to take for text.
//
// Errors:  nothing throws.
// Threads: as the texts.
#pragma once

#include <zo/config.h>

#include <concepts>
#include <string_view>
#include <type_traits>

namespace zo {

// std::wstring, std::wstring_view and what else can be seen as one. What also converts to a pointer
// is taken by that: it says itself where its text ends.
template <class T>
concept WholeText = std::is_class_v<T> && std::is_convertible_v<const T&, std::wstring_view> &&
                    !std::is_convertible_v<const T&, const wchar_t*>;

// std::filesystem::path where its characters are wide. (The header <filesystem> is left to those
// who use it.)
template <class Path>
concept WidePath = requires(const Path& path) {
  requires std::same_as<typename Path::value_type, wchar_t>;
  { path.native() } -> std::convertible_to<std::wstring_view>;
};

// One character or a text of another library: what a member takes beside its forms for ZoString,
// ZoSubString and const wchar_t*.
template <class T>
concept OtherText =
    std::same_as<T, wchar_t> || (std::is_class_v<T> && (WholeText<T> || WidePath<T>));

// Has a text of its own: ZoString, ZoSubString.
template <class T>
concept ViewedText = std::is_class_v<T> && requires(const T& text) {
  { text.view() } -> std::same_as<std::wstring_view>;
};

// All of them.
template <class T>
concept AnyText = ViewedText<T> || OtherText<T> || std::is_convertible_v<const T&, const wchar_t*>;

// What is no view yet: beside a parameter that is one, for null pointers, which are empty texts
// here and which a view made of them would read.
template <class T>
concept PointedText =
    AnyText<T> && !std::same_as<T, std::wstring_view> && !std::same_as<T, wchar_t>;

// What C++ would make a character or a null pointer of, and texts of other characters: numbers,
// truth values, enumerators, narrow characters and texts.
template <class T>
concept NotText = ((std::is_arithmetic_v<T> || std::is_enum_v<T>) && !std::same_as<T, wchar_t>) ||
                  (std::is_pointer_v<T> && !std::is_convertible_v<T, const wchar_t*>);

// The text as it stands; a null pointer counts as empty.
template <AnyText T>
[[nodiscard]] constexpr std::wstring_view textOf(const T& text) noexcept {
  if constexpr (std::same_as<T, wchar_t>) {
    return {&text, 1};
  } else if constexpr (ViewedText<T>) {
    return text.view();
  } else if constexpr (WholeText<T>) {
    return text;
  } else if constexpr (WidePath<T>) {
    return text.native();
  } else {
    const wchar_t* const pointer = text;
    return pointer ? std::wstring_view(pointer) : std::wstring_view();
  }
}

}  // namespace zo
