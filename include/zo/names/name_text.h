// What texts of file names are taken from besides const wchar_t* and ZoString: std::wstring and
// std::filesystem::path. (The header <filesystem> is left to those who use it.)
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: any, as long as nobody changes the text.
// Cost:    only a std::wstring_view is copied, as it need not end in a zero.
#pragma once

#include <zo/text/text_forms.h>

#include <concepts>
#include <string>
#include <string_view>

namespace zo {

// These types themselves, none that converts to them: so no call becomes ambiguous.
template <class Text>
concept NameSource = std::same_as<Text, std::wstring> || WidePath<Text>;

// For use within the expression of the argument.
[[nodiscard]] inline const std::wstring& wideOf(const std::wstring& text) noexcept {
  return text;  // NOLINT(bugprone-return-const-ref-from-parameter): see above
}
template <WidePath Path>
[[nodiscard]] const std::wstring& wideOf(const Path& path) noexcept {
  return path.native();
}

// An argument of a function that passes texts on as pointers. Texts end at their first zero there.
class NameText {
 public:
  NameText(const wchar_t* text) noexcept : text_(text) {}
  NameText(std::wstring_view text) : copy_(text), text_(copy_.c_str()) {}
  template <NameSource Source>
  NameText(const Source& source) noexcept : text_(wideOf(source).c_str()) {}
  NameText(const NameText&) = delete;
  NameText& operator=(const NameText&) = delete;
  ~NameText() = default;

  [[nodiscard]] const wchar_t* get() const noexcept { return text_; }

 private:
  std::wstring copy_;
  const wchar_t* text_;
};

}  // namespace zo
