#include <zo/system/error.h>

namespace {

// What a format and its arguments say. A null format stays one: it means something to a service.
class Printed {
 public:
  Printed(const wchar_t* format, const zo::FormatArguments& arguments) noexcept
      : format_(format ? L"%ls" : nullptr) {
    zo::printTo(text_, std::size(text_), format, arguments);
  }
  [[nodiscard]] const wchar_t* format() const noexcept { return format_; }
  [[nodiscard]] const wchar_t* text() const noexcept { return text_; }

 private:
  const wchar_t* format_;
  wchar_t text_[1024];
};

// The virtual functions among their overloads.
using Warning = int (ZoErrorSlots::*)(const wchar_t*, int, const wchar_t*, ...);
using Trace = int (ZoErrorSlots::*)(const wchar_t*, ...);
constexpr Warning kWarning = &ZoErrorSlots::warning;
constexpr Trace kTrace = &ZoErrorSlots::trace, kPrompt = &ZoErrorSlots::prompt;

}  // namespace

int ZoErrorSlots::printWarning(const wchar_t* fileName, int position, const wchar_t* format,
                               const zo::FormatArguments& arguments) {
  const Printed printed(format, arguments);
  return (this->*kWarning)(fileName, position, printed.format(), printed.text());
}

int ZoErrorSlots::printTrace(const wchar_t* format, const zo::FormatArguments& arguments) {
  const Printed printed(format, arguments);
  return (this->*kTrace)(printed.format(), printed.text());
}

int ZoErrorSlots::printPrompt(const wchar_t* format, const zo::FormatArguments& arguments) {
  const Printed printed(format, arguments);
  return (this->*kPrompt)(printed.format(), printed.text());
}
