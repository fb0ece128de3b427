// Texts for what looks at a text and does not copy it: a temporary that owns its text would be gone
// before the first look, and does not compile.
#pragma once

#include <zo/text/text_forms.h>

#include <concepts>
#include <string_view>
#include <type_traits>

class ZoSubString;

namespace zo {

// A view, a pointer, a literal, or a text that has a name. Text is deduced from Text&&, so that it
// is a reference for what has a name.
template <class Text>
concept LastingText =
    AnyText<std::remove_cvref_t<Text>> && !std::same_as<std::remove_cvref_t<Text>, wchar_t> &&
    (std::is_lvalue_reference_v<Text> || !std::is_class_v<Text> ||
     std::same_as<std::remove_cvref_t<Text>, std::wstring_view> ||
     std::same_as<std::remove_cvref_t<Text>, ZoSubString>);

// What owns its characters and is about to go.
template <class Text>
concept TemporaryText = AnyText<std::remove_cvref_t<Text>> &&
                        !std::same_as<std::remove_cvref_t<Text>, wchar_t> && !LastingText<Text>;

}  // namespace zo
