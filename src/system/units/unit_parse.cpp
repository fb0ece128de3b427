// Reads a value with its unit: one number, or a sum that goes on in smaller units (5 ft 3 1/2 in).
// Everything is added up in Wide and rounded to a real once, at the end; a single decimal keeps its
// own way through toInternal, so that what was printed reads back as it was.
#include <zo/results.h>
#include <zo/system/unit_text.h>

#include <cmath>
#include <cwchar>

#include "system/units/decimal.h"
#include "system/units/unit_format.h"
#include "text/code_units.h"

namespace zo {
namespace {

bool isBlank(wchar_t c) noexcept { return isWhite(c) || c == 0xA0; }

// One number as it was read.
struct Number {
  Decimal decimal;
  double value = 0;            // decimal with all of its digits
  std::int64_t numerator = 0;  // what comes on top of decimal
  std::int64_t denominator = 1;
  bool isSpecial = false;  // an infinity, or what is not a number

  [[nodiscard]] bool isDecimal() const noexcept { return numerator == 0; }
  [[nodiscard]] Wide wide() const noexcept {
    const Wide whole = decimal.wide();
    return isDecimal() ? whole : whole + wideOf(numerator) / wideOf(denominator);
  }
};

class Parser {
 public:
  Parser(std::wstring_view text, const ZoUnitFormat& format,
         const ResolvedFormat& resolved) noexcept
      : rest_(text), format_(format), resolved_(resolved) {}

  bool parse(double& value) noexcept {
    skipWhite();
    const bool negative = at(0) == L'-';
    if (negative || at(0) == L'+') rest_.remove_prefix(1);
    if (!magnitude(value)) return false;
    if (negative) value = -value;
    return true;
  }

 private:
  [[nodiscard]] wchar_t at(size_t i) const noexcept { return i < rest_.size() ? rest_[i] : L'\0'; }
  void skipWhite() noexcept {
    while (!rest_.empty() && isBlank(rest_[0])) rest_.remove_prefix(1);
  }

  bool magnitude(double& value) noexcept {
    Number number;
    NamedUnit unit;
    if (!term(number, unit)) return false;
    const bool named = static_cast<bool>(unit);
    if (!named) unit = resolved_.unit;
    skipWhite();
    if (rest_.empty()) {
      value = alone(number, unit);
      return true;
    }
    return named && sum(number, unit, value);
  }

  static double alone(const Number& number, const NamedUnit& unit) noexcept {
    if (!number.isDecimal()) return (number.wide() * unit.factor).hi;
    const bool isInternal = unit.unit->isPowerOfTen() && unit.unit->exponent == 0;
    return number.isSpecial || isInternal ? number.value : toInternal(number.decimal, unit);
  }

  // The terms after the first, each in a smaller unit.
  bool sum(Number number, NamedUnit unit, double& value) noexcept {
    Wide total;
    for (bool last = false;;) {
      if (number.isSpecial || !number.decimal.fitsWide()) return false;
      total = total + number.wide() * unit.factor;
      skipWhite();
      if (rest_.empty()) break;
      if (last) return false;
      if (at(0) == L'-') rest_.remove_prefix(1);
      NamedUnit next;
      if (!term(number, next)) return false;
      last = !next;
      if (!smallerUnit(unit, next)) return false;
    }
    value = total.hi;
    return true;
  }

  // Makes unit the next one of a sum; a null next stands for the one that follows it.
  bool smallerUnit(NamedUnit& unit, const NamedUnit& next) const noexcept {
    for (const wchar_t* name = unit.unit->smaller; name; name = unit.unit->smaller) {
      unit = findUnit(*resolved_.quantity, name);
      if (!next || unit.unit == next.unit) return true;
    }
    return false;
  }

  bool term(Number& result, NamedUnit& unit) noexcept {
    if (!number(result)) return false;
    const std::wstring_view behindNumber = rest_;
    skipWhite();
    unit = unitAt(*resolved_.quantity, rest_);
    if (unit) {
      rest_.remove_prefix(std::wcslen(unit.name));
    } else {
      rest_ = behindNumber;
    }
    return true;
  }

  bool number(Number& result) noexcept {
    result = {};
    if (rest_.empty() || isBlank(rest_[0]) || rest_[0] == L'-' || rest_[0] == L'+') return false;
    unsigned int end = 0;
    if (ZoStrToReal(rest_, result.value, &end, format_.decimal, format_.grouping) ==
        ZoResult::refused)
      return false;
    const std::wstring_view taken = rest_.substr(0, end);
    rest_.remove_prefix(end);
    const bool hasDigits = taken.find_first_of(L"0123456789") != std::wstring_view::npos;
    result.isSpecial = !hasDigits;
    if (!hasDigits) return true;
    result.decimal = readDecimal(taken, format_.decimal);
    const bool isWhole = taken.find_first_not_of(L"0123456789") == std::wstring_view::npos;
    return !isWhole || fraction(result);
  }

  // What may follow a whole number: "/8", " 5/8" or "-5/8". False when a fraction is no number.
  bool fraction(Number& result) noexcept {
    if (at(0) == L'/') {
      if (result.decimal.exponent != 0) return false;
      result.numerator = result.decimal.digits;
      result.decimal = {};
      rest_.remove_prefix(1);
      return denominator(result);
    }
    size_t start = at(0) == L'-' ? 1 : 0;
    if (start == 0) {
      while (isBlank(at(start))) ++start;
    }
    size_t slash = start;
    while (isDigit(at(slash))) ++slash;
    if (slash == start || at(slash) != L'/') return true;
    if (ZoStrToInt(rest_.substr(start, slash - start), result.numerator) != ZoResult::ok)
      return false;
    rest_.remove_prefix(slash + 1);
    return denominator(result);
  }

  bool denominator(Number& result) noexcept {
    unsigned int end = 0;
    if (!isDigit(at(0)) || ZoStrToInt(rest_, result.denominator, &end) != ZoResult::ok ||
        result.denominator == 0)
      return false;
    rest_.remove_prefix(end);
    return true;
  }

  std::wstring_view rest_;
  const ZoUnitFormat& format_;
  const ResolvedFormat& resolved_;
};

}  // namespace
}  // namespace zo

int ZoParseUnits(std::wstring_view text, ZoTypeCode code, const ZoUnitFormat& format,
                 double& value) noexcept {
  zo::ResolvedFormat resolved;
  if (!zo::resolve(code, format, resolved)) return ZoResult::refused;
  double read = 0;
  if (!zo::Parser(text, format, resolved).parse(read)) return ZoResult::refused;
  value = read;
  // Only a word says infinity on purpose.
  const bool hasDigits = text.find_first_of(L"0123456789") != std::wstring_view::npos;
  return std::isinf(read) && hasDigits ? ZoResult::overflow : ZoResult::ok;
}
