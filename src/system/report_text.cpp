#include "system/report_text.h"

#include <cwchar>

namespace zo {

ReportText& ReportText::add(const wchar_t* text) noexcept {
  if (!text) return *this;
  const std::size_t count = wcsnlen(text, kMaxLength - length_);
  std::wmemcpy(buffer_.data() + length_, text, count);
  length_ += count;
  return *this;
}

ReportText& ReportText::add(int number) noexcept {
  wchar_t digits[12];
  _itow(number, digits, 10);
  return add(digits);
}

ReportText& ReportText::addFormatted(const wchar_t* format, va_list arguments) noexcept {
  if (!format) return *this;
  // Writes no terminator when the text is too long: the buffer is zero from the start.
  _vsnwprintf(buffer_.data() + length_, kMaxLength - length_, format, arguments);
  length_ += wcsnlen(buffer_.data() + length_, kMaxLength - length_);
  return *this;
}

}  // namespace zo
