// Text of a report in a fixed buffer: what passes 256 characters is cut off. Needs no memory, so
// that a lack of it can be reported.
#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <string_view>

namespace zo {

class ReportText {
 public:
  static constexpr std::size_t kMaxLength = 256;

  // Null adds nothing.
  ReportText& add(const wchar_t* text) noexcept;
  ReportText& add(int number) noexcept;  // decimal
  // As the runtime's wprintf does. Null adds nothing; what cannot be formatted ends the text.
  ReportText& addFormatted(const wchar_t* format, va_list arguments) noexcept;

  [[nodiscard]] const wchar_t* text() const noexcept { return buffer_.data(); }
  [[nodiscard]] std::wstring_view view() const noexcept { return {buffer_.data(), length_}; }

 private:
  std::array<wchar_t, kMaxLength + 1> buffer_{};
  std::size_t length_ = 0;
};

}  // namespace zo
