#include <zo/variant/color.h>

#include <algorithm>
#include <array>
#include <optional>
#include <ostream>

#include "text/code_units.h"

namespace {

struct Name {
  std::string_view text;
  ZoColor::Type type;
};

// The first name of a type is the one that is written.
constexpr Name names[] = {
    {"none", ZoColor::kNone},         {"red", ZoColor::kRed},
    {"yellow", ZoColor::kYellow},     {"green", ZoColor::kGreen},
    {"cyan", ZoColor::kCyan},         {"blue", ZoColor::kBlue},
    {"magenta", ZoColor::kMagenta},   {"foreground", ZoColor::kForeground},
    {"gray", ZoColor::kGray},         {"lightgray", ZoColor::kLightGray},
    {"darkgray", ZoColor::kDarkGray}, {"white", ZoColor::kWhite},
    {"grey", ZoColor::kGray},         {"lightgrey", ZoColor::kLightGray},
    {"darkgrey", ZoColor::kDarkGray},
};

bool equalIgnoringCase(std::wstring_view text, std::string_view lowerCase) noexcept {
  return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                    [](wchar_t a, char b) { return zo::lowerAscii(a) == static_cast<wchar_t>(b); });
}

// The number that all of `digits` spell, of which there are 1 to `maxDigits`. Eight hexadecimal
// digits at most, so nothing overflows.
std::optional<unsigned int> parse(std::wstring_view digits, unsigned int base,
                                  std::size_t maxDigits) noexcept {
  if (digits.empty() || digits.size() > maxDigits) return std::nullopt;
  unsigned int number = 0;
  for (const wchar_t c : digits) {
    const unsigned int digit = zo::hexDigit(c);
    if (digit >= base) return std::nullopt;
    number = number * base + digit;
  }
  return number;
}

// The text of a colour, in place: the longest has ten characters.
template <typename Char>
class Text {
 public:
  explicit Text(const ZoColor& color) noexcept {
    const unsigned int low = color.value() & 0xFFFFFF;
    if (color.type() == ZoColor::kTrueColor) {
      add("#");
      addNumber((low & 0xFF) << 16 | (low & 0xFF00) | low >> 16, 16, 6);
    } else if (low != 0) {
      add("0x");
      addNumber(color.value(), 16, 8);
    } else {
      const auto* name =
          std::find_if(std::begin(names), std::end(names),
                       [&](const Name& candidate) { return candidate.type == color.type(); });
      if (name != std::end(names)) {
        add(name->text);
      } else {
        addNumber(color.type(), 10, 1);
      }
    }
  }
  [[nodiscard]] std::basic_string_view<Char> view() const noexcept { return {text_.data(), size_}; }

 private:
  void add(std::string_view text) noexcept {
    for (const char c : text) text_[size_++] = static_cast<Char>(c);
  }
  void addNumber(unsigned int number, unsigned int base, std::size_t minDigits) noexcept {
    std::array<Char, 8> digits{};
    std::size_t count = 0;
    for (; number != 0 || count < minDigits; number /= base) {
      digits[count++] = static_cast<Char>(zo::kHexDigits[number % base]);
    }
    while (count > 0) text_[size_++] = digits[--count];
  }

  std::array<Char, 12> text_{};
  std::size_t size_ = 0;
};

}  // namespace

int ZoColor::fromString(std::wstring_view text) noexcept {
  if (text.size() == 7 && text.front() == L'#') {
    const auto word = parse(text.substr(1), 16, 6);
    if (!word) return ZoResult::refused;
    return setRgb(*word >> 16 | (*word & 0xFF00) | (*word & 0xFF) << 16);
  }
  if (text.size() == 10 && equalIgnoringCase(text.substr(0, 2), "0x")) {
    const auto word = parse(text.substr(2), 16, 8);
    if (!word) return ZoResult::refused;
    value_ = *word;
    return ZoResult::ok;
  }
  if (const auto number = parse(text, 10, 3)) {
    return *number <= 255 ? setType(static_cast<Type>(*number)) : ZoResult::refused;
  }
  for (const Name& name : names) {
    if (equalIgnoringCase(text, name.text)) return setType(name.type);
  }
  return ZoResult::refused;
}

ZoString ZoColor::toString() const { return ZoString(Text<wchar_t>(*this).view()); }

std::ostream& operator<<(std::ostream& out, const ZoColor& color) {
  return out << Text<char>(color).view();
}

std::wostream& operator<<(std::wostream& out, const ZoColor& color) {
  return out << Text<wchar_t>(color).view();
}
