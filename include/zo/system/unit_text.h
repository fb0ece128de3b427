// Values of the physical type codes as text and back: the arithmetic of the units service, without
// a service, settings or guard. docs/units.md lists codes, units and forms.
//
// A value is held in the internal unit of its type code (mm, rad, s, kg, N, ...); a text says it in
// any unit of that code. What is printed exactly (kExact, the default) reads back as the very same
// value, in every unit and form: the shortest such text is taken. With a precision, the text is the
// nearest one of that many digits, and what it reads as lies within half a unit of its last digit;
// printing that again gives the same text.
//
// Physical are the real codes: Real to Resistance, XReal, XDistance (a length) and XScale. Those
// without a meaning of their own, Real, XReal, XScale, ThreadFactor and what has no row in the
// list, are pure numbers.
//
// Errors:  0, or ZoResult::refused: the code is not physical, it has no such unit, the form is not
//          for it, the format is none, or the text is not a value. The out-parameter is then as it
//          was. Reading a value that is too large: ZoResult::overflow and an infinity.
// Threads: any.
// Cost:    one conversion of the number each; reading allocates nothing.
#pragma once

#include <zo/config.h>
#include <zo/text/number_text.h>
#include <zo/text/string.h>
#include <zo/variant/type_code.h>

#include <string_view>

struct ZoUnitFormat {
  enum Form : int {
    Decimal,           // 1.5 mm
    Fraction,          // 3 5/8"       whole units and halves, quarters, ... down to 1/1024
    DegMinSec,         // 12d34'56.7"    angles, with U+00B0 for the d
    FeetInch,          // 5'-3.5"      lengths
    FeetInchFraction,  // 5'-3 1/2"    lengths
  };
  static constexpr int kExact = -1;
  static constexpr int kMaxPrecision = 18;

  // Name of the unit to print in, which is printed as given here, and which a number without a unit
  // is read in. Null: the internal unit; for Fraction of a length, inches. The other three forms
  // print in units of their own, and read a number without a unit in degrees or inches.
  const wchar_t* unit = nullptr;
  Form form = Decimal;
  // Digits behind the decimal character (of seconds, of inches), 0 to kMaxPrecision, or kExact. In
  // fractions the largest denominator as a power of two: 6 is 1/64, 10 (and more) 1/1024.
  int precision = kExact;
  wchar_t decimal = L'.';
  // Between groups of three digits of the whole part; 0: none.
  wchar_t grouping = 0;
  bool withName = true;    // Decimal and Fraction: print the unit's name
  bool trimZeros = false;  // Decimal, DegMinSec, FeetInch: drop zeros at the end of the decimals
};

// Whether a character can part a number's digits: no digit, letter, sign or blank that means
// something else in a value, and not both the same. 0 is no grouping; a decimal of 0 is none.
[[nodiscard]] ZO_COM_API bool ZoIsUnitSeparators(wchar_t decimal, wchar_t grouping) noexcept;

// Where more than 18 digits would be needed for a precision, the exact text is printed. Fractions
// that are asked to be exact and are none of 1/1024 are printed as decimals. Numbers from 1e21 on,
// and exact ones below 1e-7, are printed with an exponent.
// Exactness is promised for 0, infinities and magnitudes from 1e-250 to 1e250; beyond these, for
// units that are a power of ten of the internal one.
[[nodiscard]] ZO_COM_API int ZoPrintUnits(double value, ZoTypeCode code, const ZoUnitFormat& format,
                                          ZoString& text);

// Reads any form, whatever the format's own; white space at the ends is passed over.
//
//   value    = [sign] term { ["-" | white space] term }
//   term     = number [unit]
//   number   = a real (zo/text/number_text.h) | whole ["-" | white space] whole "/" whole
//            | whole "/" whole
//
// More than one term is taken where units follow one another: 12deg 34' 56", 5'-3 1/2", 1 h 30 min,
// 2 d 4 h, 3 lb 4 oz. The last of them may leave its unit out: it is the next smaller one. Unit
// names may be written in other case where that leaves no choice. Of a number's digits the first 18
// count, and in the internal unit all.
[[nodiscard]] ZO_COM_API int ZoParseUnits(std::wstring_view text, ZoTypeCode code,
                                          const ZoUnitFormat& format, double& value) noexcept;

// A value's number in one unit as a number in another; null is the internal unit. Rounded once.
[[nodiscard]] ZO_COM_API int ZoConvertUnits(double number, ZoTypeCode code, const wchar_t* from,
                                            const wchar_t* to, double& result) noexcept;

// The names of a code's units, from 0, the internal one; null behind the last, and for a code that
// is not physical. A unit that has several names is listed by its first.
[[nodiscard]] ZO_COM_API const wchar_t* ZoUnitName(ZoTypeCode code, unsigned int index) noexcept;
// The unit's name as the library keeps it, valid for good; null when the code has no such unit.
[[nodiscard]] ZO_COM_API const wchar_t* ZoFindUnit(ZoTypeCode code, const wchar_t* name) noexcept;
