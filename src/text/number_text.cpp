#include <zo/results.h>
#include <zo/text/number_text.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "text/code_units.h"

namespace {

using zo::isDigit;
using zo::isWhite;
using zo::lowerAscii;

unsigned int digitOf(wchar_t c) noexcept { return static_cast<unsigned int>(c - L'0'); }

// Walks over a text; past its end stand zero characters.
class Scanner {
 public:
  explicit Scanner(std::wstring_view text) noexcept : text_(text) {
    while (isWhite(peek())) ++at_;
  }

  [[nodiscard]] wchar_t peek(size_t ahead = 0) const noexcept {
    return text_.size() - at_ > ahead ? text_[at_ + ahead] : L'\0';
  }
  void advance(size_t n = 1) noexcept { at_ += n; }
  [[nodiscard]] size_t position() const noexcept { return at_; }

  // Takes a sign, and tells whether it was a minus.
  bool takeSign() noexcept {
    const wchar_t c = peek();
    if (c == L'-' || c == L'+') ++at_;
    return c == L'-';
  }

  // Takes a word of lower-case letters, written in any case.
  bool takeWord(std::wstring_view word) noexcept {
    for (size_t i = 0; i < word.size(); ++i) {
      if (lowerAscii(peek(i)) != word[i]) return false;
    }
    at_ += word.size();
    return true;
  }

  // Takes digits and gives each to use(digit); returns how many there were. Groups are parted by
  // the grouping character, unless that is 0.
  template <class Use>
  size_t takeDigits(wchar_t grouping, Use use) noexcept {
    size_t count = 0;
    bool grouped = false;
    for (;; ++at_) {
      const wchar_t c = peek();
      if (isDigit(c)) {
        use(digitOf(c));
        ++count;
      } else if (grouping != 0 && c == grouping && (grouped || (count > 0 && count <= 3)) &&
                 isDigit(peek(1)) && isDigit(peek(2)) && isDigit(peek(3)) && !isDigit(peek(4))) {
        grouped = true;
      } else {
        return count;
      }
    }
  }

 private:
  std::wstring_view text_;
  size_t at_ = 0;
};

// The digits of a real, as they come in: a whole number times a power of ten. The nearest double
// depends on at most 767 digits and on whether any of the others is not 0.
class Significand {
 public:
  void add(unsigned int digit, bool fraction) noexcept {
    if (count_ == 0 && digit == 0) {
      exponent_ -= fraction;
    } else if (count_ < kDigits) {
      text_[count_++] = static_cast<char>('0' + digit);
      exponent_ -= fraction;
    } else {
      restIsNotZero_ |= digit != 0;
      exponent_ += !fraction;
    }
  }

  // The digits times ten to the exponent that was read. Returns 0, or ZoResult::overflow and then
  // infinity.
  int valueTimes(std::int64_t exponent, double& value) noexcept {
    value = 0;
    exponent += exponent_;
    // The value lies between 10^(magnitude - 1) and 10^magnitude.
    const std::int64_t magnitude = exponent + static_cast<std::int64_t>(count_);
    if (count_ == 0 || magnitude < -400) return ZoResult::ok;
    if (count_ <= kExactDigits && exponent >= -kExactPower && exponent <= kExactPower) {
      // Digits and power are both exact: one rounding makes the nearest.
      value = exponent < 0 ? digits() / kPowers[-exponent] : digits() * kPowers[exponent];
      return ZoResult::ok;
    }
    if (magnitude <= 400) {
      if (restIsNotZero_) {
        text_[count_++] = '1';
        --exponent;
      }
      text_[count_] = 'e';
      const auto exponentEnd =
          std::to_chars(text_ + count_ + 1, text_ + sizeof text_, exponent).ptr;
      if (std::from_chars(text_, exponentEnd, value).ec == std::errc()) return ZoResult::ok;
      if (magnitude <= 0) return ZoResult::ok;
    }
    value = std::numeric_limits<double>::infinity();
    return ZoResult::overflow;
  }

 private:
  [[nodiscard]] double digits() const noexcept {
    std::int64_t number = 0;
    for (size_t i = 0; i < count_; ++i) number = number * 10 + (text_[i] - '0');
    return static_cast<double>(number);
  }

  static constexpr size_t kExactDigits = 15;
  static constexpr int kExactPower = 22;
  static constexpr double kPowers[kExactPower + 1] = {
      1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
      1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  static constexpr size_t kDigits = 770;
  char text_[kDigits + 30];
  size_t count_ = 0;
  std::int64_t exponent_ = 0;
  bool restIsNotZero_ = false;
};

// Takes an exponent if there is a whole one.
std::int64_t takeExponent(Scanner& in) noexcept {
  if (lowerAscii(in.peek()) != L'e') return 0;
  const bool hasSign = in.peek(1) == L'-' || in.peek(1) == L'+';
  if (!isDigit(in.peek(hasSign ? 2 : 1))) return 0;
  in.advance();
  const bool negative = in.takeSign();
  std::int64_t exponent = 0;
  in.takeDigits(0, [&](unsigned int digit) {
    // Far beyond any length that a text can have: larger ones make no difference.
    if (exponent < 1'000'000'000'000) exponent = exponent * 10 + digit;
  });
  return negative ? -exponent : exponent;
}

// Takes a number without its sign. value and result are set when there is one.
bool takeReal(Scanner& in, wchar_t decimal, wchar_t grouping, double& value, int& result) noexcept {
  result = ZoResult::ok;
  if (in.takeWord(L"inf")) {
    in.takeWord(L"inity");
    value = std::numeric_limits<double>::infinity();
    return true;
  }
  if (in.takeWord(L"nan")) {
    value = std::numeric_limits<double>::quiet_NaN();
    return true;
  }
  Significand digits;
  size_t count = in.takeDigits(grouping == decimal ? L'\0' : grouping,
                               [&](unsigned int digit) noexcept { digits.add(digit, false); });
  if (decimal != 0 && in.peek() == decimal && (count > 0 || isDigit(in.peek(1)))) {
    in.advance();
    count += in.takeDigits(0, [&](unsigned int digit) noexcept { digits.add(digit, true); });
  }
  if (count == 0) return false;
  result = digits.valueTimes(takeExponent(in), value);
  return true;
}

void setEnd(unsigned int* end, size_t position) noexcept {
  if (end) *end = static_cast<unsigned int>(position);
}

unsigned int widen(const char* from, const char* end, wchar_t* buffer) noexcept {
  const auto length = static_cast<unsigned int>(end - from);
  for (unsigned int i = 0; i < length; ++i) buffer[i] = static_cast<wchar_t>(from[i]);
  buffer[length] = 0;
  return length;
}

}  // namespace

int ZoStrToReal(std::wstring_view text, double& value, unsigned int* end, wchar_t decimal,
                wchar_t grouping) noexcept {
  Scanner in(text);
  const bool negative = in.takeSign();
  double magnitude = 0;
  int result = ZoResult::ok;
  if (!takeReal(in, decimal, grouping, magnitude, result)) {
    setEnd(end, 0);
    return ZoResult::refused;
  }
  value = negative ? -magnitude : magnitude;
  setEnd(end, in.position());
  return result;
}

int ZoStrToInt(std::wstring_view text, std::int64_t& value, unsigned int* end,
               wchar_t grouping) noexcept {
  using Limits = std::numeric_limits<std::int64_t>;
  Scanner in(text);
  const bool negative = in.takeSign();
  const std::uint64_t limit = std::uint64_t{Limits::max()} + negative;
  std::uint64_t magnitude = 0;
  bool overflow = false;
  const size_t count = in.takeDigits(grouping, [&](unsigned int digit) noexcept {
    constexpr std::uint64_t kAlwaysFits = 100'000'000'000'000'000;
    overflow |= magnitude >= kAlwaysFits && magnitude > (limit - digit) / 10;
    if (!overflow) magnitude = magnitude * 10 + digit;
  });
  if (count == 0) {
    setEnd(end, 0);
    return ZoResult::refused;
  }
  if (overflow) magnitude = limit;
  value = static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
  setEnd(end, in.position());
  return overflow ? ZoResult::overflow : ZoResult::ok;
}

unsigned int ZoRealToStr(double value, wchar_t* buffer, wchar_t decimal) noexcept {
  if (std::isnan(value)) {
    std::memcpy(buffer, L"nan", sizeof L"nan");
    return 3;
  }
  char text[ZoNumberTextSize];
  const unsigned int length =
      widen(text, std::to_chars(text, text + sizeof text, value).ptr, buffer);
  if (decimal != L'.') {
    for (unsigned int i = 0; i < length; ++i) {
      if (buffer[i] == L'.') buffer[i] = decimal;
    }
  }
  return length;
}

unsigned int ZoIntToStr(std::int64_t value, wchar_t* buffer) noexcept {
  char text[ZoNumberTextSize];
  return widen(text, std::to_chars(text, text + sizeof text, value).ptr, buffer);
}
