#include <zo/text/printf.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <exception>
#include <string>

#include "platform/ansi.h"

namespace {

using zo::ArgumentKind;
using zo::Conversion;
using zo::FormatArgument;

// The text so far, in a buffer that cuts off what passes its end.
class Output {
 public:
  Output(wchar_t* buffer, std::size_t size) : buffer_(buffer), room_(size - 1) {}

  Output& operator<<(std::wstring_view text) {
    length_ += text.copy(buffer_ + length_, room_ - length_);
    return *this;
  }
  void fill(std::size_t count) {
    count = std::min(count, room_ - length_);
    std::wmemset(buffer_ + length_, L' ', count);
    length_ += count;
  }
  std::size_t end() {
    buffer_[length_] = 0;
    return length_;
  }

 private:
  wchar_t* buffer_;
  std::size_t room_, length_ = 0;
};

class Printer {
 public:
  Printer(Output& out, const zo::FormatArguments& arguments)
      : out_(out), next_(arguments.list), end_(arguments.list + arguments.count) {}

  void print(const wchar_t* format) {
    while (const wchar_t* const percent = std::wcschr(format, L'%')) {
      out_ << std::wstring_view(format, static_cast<std::size_t>(percent - format));
      format = percent[1] == L'%' ? (out_ << L"%", percent + 2) : convert(percent);
    }
    out_ << format;
  }

 private:
  // Gives where the format goes on.
  const wchar_t* convert(const wchar_t* percent) {
    Conversion conversion = zo::readConversion(percent + 1);
    const auto counts = (conversion.width == Conversion::kArgument) +
                        (conversion.precision == Conversion::kArgument);
    if (!zo::isConversion(conversion.type) || end_ - next_ <= counts) {
      out_ << std::wstring_view(percent, static_cast<std::size_t>(conversion.end - percent));
      return conversion.end;
    }
    bool left = zo::isOneOf(L'-', conversion.flags);
    if (conversion.width == Conversion::kArgument) {
      const int width = count();
      left = left || width < 0;
      conversion.width = width < 0 ? -width : width;
    }
    if (conversion.precision == Conversion::kArgument)
      conversion.precision = std::max(count(), Conversion::kNone);
    convert(*next_++, conversion, left);
    return conversion.end;
  }

  int count() {
    const FormatArgument& argument = *next_++;
    return argument.isWhole()
               ? static_cast<int>(std::clamp<std::int64_t>(argument.whole(), -9999, 9999))
               : 0;
  }

  void convert(const FormatArgument& argument, const Conversion& conversion, bool left) {
    const bool fits = zo::accepts(conversion.type, argument.kind());
    const wchar_t type = fits ? conversion.type : L'?';
    switch (argument.kind()) {
      case ArgumentKind::Text:
        return text(argument.text(), conversion, left);
      case ArgumentKind::NarrowText:
        return narrow(argument.narrow(), conversion, left);
      case ArgumentKind::Real:
        return number(conversion, left, L"", fits ? type : L'g', argument.real());
      case ArgumentKind::Pointer:
        return number(conversion, left, L"", L'p', argument.pointer());
      case ArgumentKind::None:
        return;
      default:
        return whole(argument, conversion, left, type);
    }
  }

  void whole(const FormatArgument& argument, const Conversion& conversion, bool left,
             wchar_t type) {
    const bool isLarge = argument.kind() != ArgumentKind::Signed && argument.whole() < 0;
    if (type == L'c' || type == L'C') {
      const auto character = static_cast<wchar_t>(argument.whole());
      text({&character, 1}, conversion, left);
    } else if (zo::isOneOf(type, L"uoxX") || isLarge) {
      number(conversion, left, L"I64", isLarge && !zo::isOneOf(type, L"oxX") ? L'u' : type,
             argument.bits());
    } else if (zo::isOneOf(type, L"fFeEgGaA")) {
      number(conversion, left, L"", type, static_cast<double>(argument.whole()));
    } else {
      number(conversion, left, L"I64", L'd', argument.whole());
    }
  }

  void narrow(std::string_view bytes, const Conversion& conversion, bool left) try {
    text(zo::fromMultiByte(bytes), conversion, left);
  } catch (const std::exception&) {  // no memory for it: shown as missing
    text(L"(?)", conversion, left);
  }

  void text(std::wstring_view text, const Conversion& conversion, bool left) {
    if (conversion.precision >= 0)
      text = text.substr(0, static_cast<std::size_t>(conversion.precision));
    const auto width = static_cast<std::size_t>(std::max(conversion.width, 0));
    const std::size_t blanks = width > text.size() ? width - text.size() : 0;
    if (!left) out_.fill(blanks);
    out_ << text;
    if (left) out_.fill(blanks);
  }

  // By the runtime, whose conversion is made of what was read.
  template <class Value>
  void number(const Conversion& conversion, bool left, std::wstring_view size, wchar_t type,
              Value value) {
    wchar_t format[32] = L"%";
    Output text(format + 1, std::size(format) - 1);
    for (const wchar_t flag : {L'+', L' ', L'#', L'0'})
      if (zo::isOneOf(flag, conversion.flags)) text << std::wstring_view(&flag, 1);
    if (left) text << L"-";
    text << L"*";
    if (conversion.precision >= 0) text << L".*";
    text << size << std::wstring_view(&type, 1);
    text.end();
    wchar_t result[kLongest];
    const int width = std::max(conversion.width, 0);
    if (conversion.precision >= 0)
      _snwprintf_s(result, kLongest, _TRUNCATE, format, width, conversion.precision, value);
    else
      _snwprintf_s(result, kLongest, _TRUNCATE, format, width, value);
    out_ << result;
  }

  static constexpr std::size_t kLongest = 1024;

  Output& out_;
  const FormatArgument* next_;
  const FormatArgument* end_;
};

}  // namespace

std::size_t zo::printTo(wchar_t* buffer, std::size_t size, const wchar_t* format,
                        const FormatArguments& arguments) noexcept {
  if (!buffer || size == 0) return 0;
  Output out(buffer, size);
  if (format) Printer(out, arguments).print(format);
  return out.end();
}
