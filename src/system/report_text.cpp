#include "system/report_text.h"

#include <algorithm>
#include <charconv>
#include <cwchar>
#include <iterator>

namespace zo {

ReportText& ReportText::add(const wchar_t* text) noexcept {
  if (!text) return *this;
  const std::size_t count = wcsnlen(text, kMaxLength - length_);
  std::wmemcpy(buffer_.data() + length_, text, count);
  length_ += count;
  return *this;
}

ReportText& ReportText::add(int number) noexcept {
  char digits[12];
  const char* const end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
  wchar_t text[12]{};
  std::copy<const char*>(digits, end, text);
  return add(text);
}

ReportText& ReportText::addFormatted(const wchar_t* format, va_list arguments) noexcept {
  if (!format) return *this;
  wchar_t* const end = buffer_.data() + length_;
  _vsnwprintf_s(end, buffer_.size() - length_, _TRUNCATE, format, arguments);
  length_ += std::wcslen(end);
  return *this;
}

}  // namespace zo
