// Prints a value in the form that its format asks for. A form splits a number that is already
// rounded to digits: so 59.99 seconds never become 60 beside minutes that were counted before.
#include <zo/results.h>
#include <zo/system/unit_text.h>

#include <cmath>
#include <string_view>

#include "system/units/decimal.h"
#include "system/units/unit_format.h"

namespace zo {
namespace {

using Format = ZoUnitFormat;

constexpr int kMaxFraction = 10;  // as a power of two

// Two numbers and two names with what parts them, at most.
class Line {
 public:
  Line& operator<<(wchar_t c) noexcept {
    text_[length_++] = c;
    return *this;
  }
  Line& operator<<(std::wstring_view text) noexcept {
    length_ += static_cast<unsigned int>(text.copy(text_ + length_, text.size()));
    return *this;
  }
  void add(const Decimal& number, const DecimalLayout& layout) noexcept {
    length_ += writeDecimal(number, layout, text_ + length_);
  }
  void add(std::int64_t whole) noexcept { add(Decimal{whole, 0}, DecimalLayout{}); }
  [[nodiscard]] std::wstring_view view() const noexcept { return {text_, length_}; }

 private:
  wchar_t text_[3 * kDecimalText];
  unsigned int length_ = 0;
};

std::int64_t tenTo(int exponent) noexcept {
  std::int64_t power = 1;
  while (exponent-- > 0) power *= 10;
  return power;
}

// Prints one magnitude. A form that does not take it falls back to decimals of the same unit.
class Printer {
 public:
  Printer(const Format& format, const ResolvedFormat& resolved, double magnitude) noexcept
      : format_(format),
        resolved_(resolved),
        magnitude_(magnitude),
        layout_{
            .decimal = format.decimal, .grouping = format.grouping, .trimZeros = format.trimZeros} {
  }

  void print() noexcept {
    switch (format_.form) {
      case Format::DegMinSec:
        if (!sixties()) decimal();
        break;
      case Format::FeetInch:
        feetInch();
        break;
      case Format::FeetInchFraction:
        if (!fraction(true)) feetInch();
        break;
      case Format::Fraction:
        if (!fraction(false)) decimal();
        break;
      default:
        decimal();
    }
  }

  // Whether a digit other than 0 was printed: what rounds to nothing has no sign.
  [[nodiscard]] bool isZero() const noexcept { return isZero_; }
  [[nodiscard]] std::wstring_view text() const noexcept { return line_.view(); }

 private:
  // The magnitude in a unit, as the precision asks.
  Decimal number(const NamedUnit& unit) noexcept {
    Decimal result;
    layout_.exponents = format_.precision == Format::kExact ||
                        !toFixed(magnitude_, unit, format_.precision, result);
    if (layout_.exponents) result = toShortest(magnitude_, unit);
    isZero_ = result.digits == 0;
    return result;
  }

  void decimal() noexcept {
    line_.add(number(resolved_.unit), layout_);
    name();
  }

  void name() noexcept {
    const std::wstring_view name = resolved_.unit.name;
    if (!format_.withName || name.empty()) return;
    constexpr std::wstring_view kClose = L"\u00B0'\"\u2032\u2033%";
    if (kClose.find(name[0]) == std::wstring_view::npos) line_ << L' ';
    line_ << name;
  }

  // Splits a number of small units: how many whole groups of so many it holds, and the rest. False
  // when the groups are more than can be counted.
  static bool split(const Decimal& number, int groupSize, std::int64_t& groups,
                    Decimal& rest) noexcept {
    rest = number;
    groups = 0;
    if (rest.exponent < -Decimal::kDigits) return true;
    for (; rest.exponent > 0; --rest.exponent) {
      if (rest.digits >= tenTo(Decimal::kDigits - 1)) return false;
      rest.digits *= 10;
    }
    const std::int64_t one = tenTo(-rest.exponent);
    groups = rest.digits / one / groupSize;
    rest.digits -= groups * groupSize * one;
    return true;
  }

  bool sixties() noexcept {
    const Decimal seconds = number(findUnit(*resolved_.quantity, kSecond));
    std::int64_t minutes = 0;
    Decimal rest;
    if (!split(seconds, 60, minutes, rest)) return false;
    line_.add(minutes / 60);
    line_ << kDegree;
    line_.add(minutes % 60);
    line_ << kMinute;
    line_.add(rest, layout_);
    line_ << kSecond;
    return true;
  }

  void feetInch() noexcept {
    const Decimal inches = number(resolved_.unit);
    std::int64_t feet = 0;
    Decimal rest;
    if (!split(inches, 12, feet, rest)) rest = inches;
    feetPrefix(feet);
    line_.add(rest, layout_);
    line_ << kInch;
  }

  void feetPrefix(std::int64_t feet) noexcept {
    if (feet == 0) return;
    line_.add(feet);
    line_ << kFoot << L'-';
  }

  // False when the number is none of 1/1024 and asked to be exact, or too large.
  bool fraction(bool withFeet) noexcept {
    const bool exact = format_.precision == Format::kExact;
    int power = exact || format_.precision > kMaxFraction ? kMaxFraction : format_.precision;
    const Wide scaled =
        Wide(magnitude_) / resolved_.unit.factor * Wide(static_cast<double>(1 << power));
    if (!(scaled.hi < 1e15)) return false;
    std::int64_t parts = nearestWhole(scaled);
    const double value = (wideOf(parts) * resolved_.unit.factor).hi / (1 << power);
    if (exact && value != magnitude_) return false;
    isZero_ = parts == 0;
    while (power > 0 && parts % 2 == 0) {
      parts /= 2;
      --power;
    }
    const std::int64_t denominator = std::int64_t{1} << power;
    std::int64_t whole = parts / denominator;
    const std::int64_t rest = parts % denominator;
    if (withFeet) {
      feetPrefix(whole / 12);
      whole %= 12;
    }
    if (whole != 0 || rest == 0) line_.add(whole);
    if (rest != 0) {
      if (whole != 0) line_ << L' ';
      line_.add(rest);
      line_ << L'/';
      line_.add(denominator);
    }
    if (withFeet) {
      line_ << kInch;
    } else {
      name();
    }
    return true;
  }

  const Format& format_;
  const ResolvedFormat& resolved_;
  double magnitude_;
  DecimalLayout layout_;
  Line line_;
  bool isZero_ = false;
};

}  // namespace
}  // namespace zo

int ZoPrintUnits(double value, ZoTypeCode code, const ZoUnitFormat& format, ZoString& text) {
  zo::ResolvedFormat resolved;
  if (!zo::resolve(code, format, resolved)) return ZoResult::refused;
  if (!std::isfinite(value)) {
    text = ZoRealToStr(value, format.decimal);
    return ZoResult::ok;
  }
  zo::Printer printer(format, resolved, std::fabs(value));
  printer.print();
  if (value < 0 && !printer.isZero()) {
    zo::Line line;
    line << L'-' << printer.text();
    text = line.view();
  } else {
    text = printer.text();
  }
  return ZoResult::ok;
}
