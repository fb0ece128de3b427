#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/units.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/printers.h"

namespace {

using Code = ZoTypeCode;
using Format = ZoUnitFormat;

constexpr Code kPhysical[] = {
    Code::Real,          Code::Length,  Code::Angle,          Code::Time,       Code::Mass,
    Code::Area,          Code::Volume,  Code::Force,          Code::SpringRate, Code::Pressure,
    Code::Density,       Code::Speed,   Code::Power,          Code::Torque,     Code::ThreadFactor,
    Code::LinearDensity, Code::Voltage, Code::ForceOfCurrent, Code::Resistance, Code::XReal,
    Code::XDistance,     Code::XScale};

Format inUnit(const wchar_t* unit, int precision = Format::kExact) {
  Format format;
  format.unit = unit;
  format.precision = precision;
  return format;
}
Format inForm(Format::Form form, int precision = Format::kExact) {
  Format format;
  format.form = form;
  format.precision = precision;
  return format;
}

std::wstring print(double value, Code code, const Format& format) {
  ZoString text(L"untouched");
  EXPECT_EQ(ZoPrintUnits(value, code, format, text), ZoResult::ok);
  return std::wstring(text.view());
}

struct Parsed {
  int result;
  double value;
  bool operator==(const Parsed&) const = default;
};
void PrintTo(const Parsed& parsed, std::ostream* out) {
  *out << parsed.result << ": " << testing::PrintToString(parsed.value);
}
constexpr double kUntouched = -77;
Parsed parse(std::wstring_view text, Code code, const Format& format = {}) {
  Parsed parsed{0, kUntouched};
  parsed.result = ZoParseUnits(text, code, format, parsed.value);
  return parsed;
}
constexpr Parsed kRefused{ZoResult::refused, kUntouched};

std::vector<std::wstring> namesOf(Code code) {
  std::vector<std::wstring> names;
  for (unsigned int i = 0; const wchar_t* name = ZoUnitName(code, i); ++i) names.push_back(name);
  return names;
}

// Values where conversions break: small and large, full of digits, next to round numbers.
std::vector<double> values() {
  std::vector<double> result = {0,
                                1,
                                25.4,
                                0.1,
                                1.0 / 3,
                                3.14159265358979 / 6,
                                1e-9,
                                5e-8,
                                1e21,
                                1e22,
                                123456.789,
                                0.30000000000000004,
                                1e250,
                                1e-250,
                                9007199254740993.0,
                                999999.99999999988};
  std::mt19937_64 random(7);
#ifdef ZO_GUARDED
  constexpr int kRandom = 8;
#else
  constexpr int kRandom = 60;
#endif
  for (int i = 0; i < kRandom; ++i) {
    const double mantissa = 1 + static_cast<double>(random() >> 12) / 4503599627370496.0;
    const int exponent = static_cast<int>(random() % (i % 2 ? 40 : 1600)) - (i % 2 ? 20 : 800);
    result.push_back(std::ldexp(mantissa, exponent));
  }
  const std::vector<double> positive = result;
  for (const double value : positive) {
    result.push_back(-value);
    if (value != 0 && value < 1e250) result.push_back(std::nextafter(value, 1e300));
  }
  return result;
}

TEST(Units, ExactTextReadsBackAsTheSameValueInEveryUnitFormAndSeparator) {
  const std::vector<double> all = values();
  const auto expectLaw = [&](Code code, const Format& format) {
    for (const double value : all) {
      const std::wstring text = print(value, code, format);
      ASSERT_EQ(parse(text, code, format), (Parsed{0, value}))
          << "code " << static_cast<unsigned int>(code) << " text " << testing::PrintToString(text);
    }
  };
  for (const Code code : kPhysical) {
    for (const std::wstring& name : namesOf(code)) {
      Format format = inUnit(name.c_str());
      expectLaw(code, format);
      format.withName = false;
      format.decimal = L',';
      format.grouping = L'.';
      expectLaw(code, format);
      format.withName = true;
      format.form = Format::Fraction;
      expectLaw(code, format);
    }
  }
  expectLaw(Code::Angle, inForm(Format::DegMinSec));
  for (const Code code : {Code::Length, Code::XDistance})
    for (const Format::Form form : {Format::Fraction, Format::FeetInch, Format::FeetInchFraction})
      expectLaw(code, inForm(form));
  // Beyond the promised range the powers of ten still hold, and so does what is not finite.
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double value : {1e308, 4.9e-324, kInfinity, -kInfinity})
    for (const wchar_t* unit : {L"mm", L"km", L"um"})
      EXPECT_EQ(parse(print(value, Code::Length, inUnit(unit)), Code::Length, inUnit(unit)),
                (Parsed{0, value}));
}

TEST(Units, WithAPrecisionTheTextIsNearestAndPrintsTheSameAgain) {
  for (const Code code : kPhysical) {
    for (const std::wstring& name : namesOf(code)) {
      for (const int precision : {0, 1, 3, 9}) {
        const Format format = inUnit(name.c_str(), precision);
        for (const double number : {0.0, 0.4999, 0.5, 1.0005, 12.3456789, 98765.4321, -2.75}) {
          double value = 0;
          ASSERT_EQ(ZoConvertUnits(number, code, name.c_str(), nullptr, value), 0);
          const std::wstring text = print(value, code, format);
          const Parsed back = parse(text, code, format);
          ASSERT_EQ(back.result, 0);
          double error = 0;
          ASSERT_EQ(ZoConvertUnits(back.value - value, code, nullptr, name.c_str(), error), 0);
          EXPECT_LE(std::fabs(error), 0.5000001 * std::pow(10, -precision));
          EXPECT_EQ(print(back.value, code, format), text);
        }
      }
    }
  }
}

// Figures that were worked out elsewhere: definitions and tables.
TEST(Units, FactorsAreThoseOfTheDefinitions) {
  const struct {
    Code code;
    const wchar_t* text;
    double value;
  } rows[] = {
      {Code::Length, L"1 in", 25.4},
      {Code::Length, L"1 ft", 304.8},
      {Code::Length, L"1 yd", 914.4},
      {Code::Length, L"1 mi", 1609344},
      {Code::Length, L"1 mil", 0.0254},
      {Code::Length, L"2.5 \u00B5m", 0.0025},
      {Code::Angle, L"180 deg", 3.14159265358979311600},
      {Code::Angle, L"1'", 2.9088820866572159615e-4},
      {Code::Angle, L"1\"", 4.8481368110953599359e-6},
      {Code::Angle, L"100 gon", 1.5707963267948966192},
      {Code::Angle, L"1 rev", 6.2831853071795864769},
      {Code::Time, L"1 h", 3600},
      {Code::Time, L"1 d", 86400},
      {Code::Mass, L"1 lb", 0.45359237},
      {Code::Mass, L"1 oz", 0.028349523125},
      {Code::Mass, L"1 t", 1000},
      {Code::Area, L"1 in2", 645.16},
      {Code::Area, L"1 ft2", 92903.04},
      {Code::Area, L"1 ha", 1e10},
      {Code::Volume, L"1 l", 1e6},
      {Code::Volume, L"1 in3", 16387.064},
      {Code::Volume, L"1 gal", 3785411.784},
      {Code::Force, L"1 lbf", 4.4482216152605},
      {Code::Force, L"1 kgf", 9.80665},
      {Code::Force, L"1 MN", 1e6},
      {Code::Force, L"1 mN", 1e-3},
      {Code::SpringRate, L"1 lbf/in", 0.17512683524647636},
      {Code::SpringRate, L"1 kN/m", 1},
      {Code::Pressure, L"1 psi", 0.0068947572931683613},
      {Code::Pressure, L"1 bar", 0.1},
      {Code::Pressure, L"1 atm", 0.101325},
      {Code::Density, L"7.85 g/cm3", 7.85e-6},
      {Code::Density, L"1 lb/in3", 2.7679904710203127e-5},
      {Code::Speed, L"36 km/h", 10000},
      {Code::Speed, L"60 m/min", 1000},
      {Code::Speed, L"1 mph", 447.04},
      {Code::Speed, L"1 kn", 514.44444444444444},
      {Code::Power, L"1 hp", 745.69987158227022},
      {Code::Power, L"1 PS", 735.49875},
      {Code::Torque, L"1 Nm", 1000},
      {Code::Torque, L"1 lbf*ft", 1355.8179483314004},
      {Code::Torque, L"1 lbf*in", 112.98482902761670},
      {Code::LinearDensity, L"1 lb/ft", 0.0014881639435695538},
      {Code::Voltage, L"230 V", 230},
      {Code::ForceOfCurrent, L"5 mA", 0.005},
      {Code::Resistance, L"4.7 k\u03A9", 4700},
      {Code::ThreadFactor, L"62.5%", 0.625},
      {Code::XScale, L"2", 2},
  };
  for (const auto& [code, text, value] : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(text)));
    const Parsed parsed = parse(text, code);
    EXPECT_EQ(parsed.result, 0);
    EXPECT_DOUBLE_EQ(parsed.value, value);
  }
  double result = 0;
  EXPECT_EQ(ZoConvertUnits(1, Code::Length, L"ft", L"in", result), 0);
  EXPECT_EQ(result, 12);
  EXPECT_EQ(ZoConvertUnits(90, Code::Angle, L"deg", L"gon", result), 0);
  EXPECT_EQ(result, 100);
}

TEST(Units, EveryFormLooksAsDocumented) {
  Format grouped = inUnit(L"mm", 2);
  grouped.grouping = L',';
  Format trimmed = inUnit(L"mm", 3);
  trimmed.trimZeros = true;
  Format bare = inUnit(L"mm");
  bare.withName = false;
  Format comma = inUnit(L"m");
  comma.decimal = L',';
  Format minutes = inForm(Format::DegMinSec, 0);
  const auto fraction = [](int precision) { return inForm(Format::Fraction, precision); };
  const auto feet = [](int precision) { return inForm(Format::FeetInchFraction, precision); };
  const double degree = 3.14159265358979323846 / 180;
  const struct {
    double value;
    Code code;
    Format format;
    const wchar_t* text;
  } rows[] = {
      {12.5, Code::Length, {}, L"12.5 mm"},
      {1234567.891, Code::Length, grouped, L"1,234,567.89 mm"},
      {999.999, Code::Length, grouped, L"1,000.00 mm"},
      {-123456, Code::Length, grouped, L"-123,456.00 mm"},
      {-0.001, Code::Length, grouped, L"0.00 mm"},
      {1.5, Code::Length, trimmed, L"1.5 mm"},
      {-2, Code::Length, trimmed, L"-2 mm"},
      {0.1, Code::Length, bare, L"0.1"},
      {1234.5, Code::Length, comma, L"1,2345 m"},
      {88.9, Code::Length, inUnit(L"\""), L"3.5\""},
      {88.9, Code::Length, inUnit(L"IN"), L"3.5 in"},
      {1e21, Code::Length, {}, L"1e+21 mm"},
      {1e20, Code::Length, {}, L"100000000000000000000 mm"},
      {1e-6, Code::Length, {}, L"0.000001 mm"},
      {1.25e-8, Code::Length, {}, L"1.25e-8 mm"},
      {1.26e-8, Code::Length, inUnit(nullptr, 9), L"0.000000013 mm"},
      {1e30, Code::Length, inUnit(nullptr, 2), L"1e+30 mm"},
      {2.5, Code::Length, inUnit(nullptr, 0), L"3 mm"},
      {0.125, Code::Real, inUnit(nullptr, 2), L"0.13"},
      {0.125, Code::ThreadFactor, inUnit(L"%"), L"12.5%"},
      {0.5235987755982989, Code::Angle, inUnit(L"deg"), L"30 deg"},
      {0.5235987755982989, Code::Angle, inUnit(L"\u00B0"), L"30\u00B0"},
      {12.5 * degree, Code::Angle, inForm(Format::DegMinSec), L"12\u00B030'0\""},
      {-12.582408333333 * degree, Code::Angle, inForm(Format::DegMinSec, 2),
       L"-12\u00B034'56.67\""},
      {59.99999 * degree, Code::Angle, minutes, L"60\u00B00'0\""},
      {0.5 * degree / 3600, Code::Angle, minutes, L"0\u00B00'1\""},
      {-0.4 * degree / 3600, Code::Angle, minutes, L"0\u00B00'0\""},
      {92.075, Code::Length, fraction(Format::kExact), L"3 5/8\""},
      {25.4 * 3.625, Code::Length, fraction(1), L"3 1/2\""},
      {25.4 * 3.625, Code::Length, fraction(0), L"4\""},
      {25.4 / 64, Code::Length, fraction(6), L"1/64\""},
      {25.4 * 2.999, Code::Length, fraction(6), L"3\""},
      {-25.4 * 0.75, Code::Length, fraction(6), L"-3/4\""},
      {-0.001, Code::Length, fraction(6), L"0\""},
      {0.75, Code::Mass, fraction(2), L"3/4 kg"},
      {25.4 * 3.3, Code::Length, fraction(Format::kExact), L"3.3\""},
      {304.8 * 5 + 25.4 * 3.5, Code::Length, inForm(Format::FeetInch), L"5'-3.5\""},
      {304.8 * 5 + 25.4 * 3.5, Code::Length, inForm(Format::FeetInch, 2), L"5'-3.50\""},
      {304.8 * 5 - 0.01, Code::Length, inForm(Format::FeetInch, 2), L"5'-0.00\""},
      {-304.8 * 5 - 25.4 * 3.5, Code::XDistance, feet(4), L"-5'-3 1/2\""},
      {304.8 * 6 - 0.01, Code::Length, feet(4), L"6'-0\""},
      {25.4 * 3.5, Code::Length, feet(4), L"3 1/2\""},
  };
  for (const auto& row : rows) EXPECT_EQ(print(row.value, row.code, row.format), row.text);
}

TEST(Units, ReadsWhatPeopleWriteAndRefusesWhatIsNoValue) {
  const double inch = 25.4;
  const double degree = 3.14159265358979323846 / 180;
  const struct {
    const wchar_t* text;
    Code code;
    Parsed parsed;
  } rows[] = {
      {L"12", Code::Length, {0, 12}},
      {L"  +12.5mm \t", Code::Length, {0, 12.5}},
      {L"1.5E3 MM", Code::Length, {0, 1500}},
      {L".5 cm", Code::Length, {0, 5}},
      {L"3 5/8\"", Code::Length, {0, 3.625 * inch}},
      {L"3-5/8 in", Code::Length, {0, 3.625 * inch}},
      {L"5/8''", Code::Length, {0, 0.625 * inch}},
      {L"1/3 mm", Code::Length, {0, 1.0 / 3}},
      {L"5'-3 1/2\"", Code::Length, {0, 63.5 * inch}},
      {L"5' 3.5\"", Code::Length, {0, 63.5 * inch}},
      {L"-5ft 3in", Code::Length, {0, -63 * inch}},
      {L"5'3", Code::Length, {0, 63 * inch}},
      {L"12\u00B030'", Code::Angle, {0, 12.5 * degree}},
      {L"12d30'36\"", Code::Angle, {0, 12.51 * degree}},
      {L"12\u00B0 36\"", Code::Angle, {0, 12.01 * degree}},
      {L"1 h 30 min", Code::Time, {0, 5400}},
      {L"1d2h", Code::Time, {0, 93600}},
      {L"3 mpa", Code::Pressure, {0, 3}},
      {L"3 N/MM\u00B2", Code::Pressure, {0, 3}},
      {L"1e400 nm", Code::Length, {ZoResult::overflow, std::numeric_limits<double>::infinity()}},
      {L"-1e308 km", Code::Length, {ZoResult::overflow, -std::numeric_limits<double>::infinity()}},
      {L"1e-400 km", Code::Length, {0, 0}},
      {L"0.00000000000000000000000000000000000001e38", Code::Length, {0, 1}},
      // Nothing, half of something, or too much.
      {L"", Code::Length, kRefused},
      {L"  ", Code::Length, kRefused},
      {L"mm", Code::Length, kRefused},
      {L"-", Code::Length, kRefused},
      {L"--5", Code::Length, kRefused},
      {L"- 5", Code::Length, kRefused},
      {L"5 kg", Code::Length, kRefused},
      {L"5 mmm", Code::Length, kRefused},
      {L"5 mm x", Code::Length, kRefused},
      {L"5 mm 3", Code::Length, kRefused},
      {L"5 3", Code::Length, kRefused},
      {L"5-3", Code::Length, kRefused},
      {L"3\" 5'", Code::Length, kRefused},
      {L"5' 4'", Code::Length, kRefused},
      {L"5' 3 2", Code::Length, kRefused},
      {L"5' -", Code::Length, kRefused},
      {L"5' --3", Code::Length, kRefused},
      {L"1/0 in", Code::Length, kRefused},
      {L"1/ in", Code::Length, kRefused},
      {L"3 5/", Code::Length, kRefused},
      {L"3.5 1/2", Code::Length, kRefused},
      {L"1e2/3", Code::Length, kRefused},
      {L"1/99999999999999999999", Code::Length, kRefused},
      {L"5 mn", Code::Force, kRefused},  // milli or mega
      {L"12,5", Code::Length, kRefused},
      {L"inf in ft", Code::Length, kRefused},
      {L"5", Code::Int, kRefused},
      {L"5", Code::String, kRefused},
      {L"5", Code::NoType, kRefused},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
    const Parsed parsed = parse(row.text, row.code);
    EXPECT_EQ(parsed.result, row.parsed.result);
    EXPECT_DOUBLE_EQ(parsed.value, row.parsed.value);
  }
  EXPECT_EQ(parse(L"5", Code::Length, inUnit(L"in")), (Parsed{0, 127}));
  EXPECT_EQ(parse(L"5", Code::Length, inForm(Format::FeetInch)), (Parsed{0, 127}));
  EXPECT_EQ(parse(L"180", Code::Angle, inForm(Format::DegMinSec)), parse(L"0.5 rev", Code::Angle));
  EXPECT_EQ(parse(std::wstring_view(L"5\0mm", 4), Code::Length), kRefused);
  EXPECT_TRUE(std::isnan(parse(L"nan", Code::Length).value));
}

TEST(Units, FormatsThatFitNotAreRefusedByPrintingAndReading) {
  Format letter, same, zero;
  letter.decimal = L'e';
  same.grouping = L'.';
  zero.decimal = 0;
  Format unknownForm = inForm(static_cast<Format::Form>(5));
  const struct {
    Code code;
    Format format;
  } rows[] = {{Code::Length, letter},
              {Code::Length, same},
              {Code::Length, zero},
              {Code::Length, unknownForm},
              {Code::Length, inUnit(L"kg")},
              {Code::Length, inUnit(L"")},
              {Code::Length, inUnit(L"mm", -2)},
              {Code::Length, inUnit(L"mm", 19)},
              {Code::Length, inForm(Format::DegMinSec)},
              {Code::Angle, inForm(Format::FeetInch)},
              {Code::Mass, inForm(Format::FeetInchFraction)},
              {Code::Int, {}},
              {Code::String, {}}};
  for (const auto& [code, format] : rows) {
    ZoString text(L"untouched");
    EXPECT_EQ(ZoPrintUnits(1, code, format, text), ZoResult::refused);
    EXPECT_EQ(text, ZoString(L"untouched"));
    EXPECT_EQ(parse(L"1", code, format), kRefused);
  }
  double result = kUntouched;
  EXPECT_EQ(ZoConvertUnits(1, Code::Length, L"mm", L"kg", result), ZoResult::refused);
  EXPECT_EQ(ZoConvertUnits(1, Code::Int, nullptr, nullptr, result), ZoResult::refused);
  EXPECT_EQ(result, kUntouched);
  EXPECT_EQ(ZoUnitName(Code::Int, 0), nullptr);
  EXPECT_EQ(ZoFindUnit(Code::Length, L"kg"), nullptr);
  EXPECT_EQ(ZoFindUnit(Code::Length, nullptr), nullptr);
}

// Texts that are nearly right: each is refused, or what it reads as prints and reads back the same.
TEST(Units, MutatedTextsAreRefusedOrMeanWhatTheyPrint) {
  const struct {
    Code code;
    const wchar_t* text;
  } seeds[] = {{Code::Length, L"-5'-3 5/8\""},
               {Code::Length, L"1,234.5678e-3 mm"},
               {Code::Angle, L"12\u00B034'56.78\""},
               {Code::Time, L"2 d 4 h 30 min 1.5 s"},
               {Code::Pressure, L"17.25 N/mm\u00B2"},
               {Code::Torque, L"1/3 lbf*ft"},
               {Code::Mass, L"3 lb 4 oz"},
               {Code::Real, L"inf"}};
  constexpr std::wstring_view kPieces = L"0123456789.,-+/'\" e\u00B0minfkgdhst\u2033\xD800\0";
  Format format;
  format.grouping = L',';
  std::mt19937 random(11);
#ifdef ZO_GUARDED
  constexpr int kRounds = 300;
#else
  constexpr int kRounds = 20'000;
#endif
  int accepted = 0;
  for (int round = 0; round < kRounds; ++round) {
    const auto& seed = seeds[random() % std::size(seeds)];
    std::wstring text = seed.text;
    for (unsigned int edits = 1 + random() % 3; edits > 0; --edits) {
      const size_t at = random() % (text.size() + 1);
      const wchar_t piece = kPieces[random() % kPieces.size()];
      switch (random() % 3) {
        case 0:
          text.insert(at, 1, piece);
          break;
        case 1:
          text.erase(at, 1 + random() % 2);
          break;
        default:
          if (at < text.size()) text[at] = piece;
      }
    }
    const std::vector<wchar_t> exact(text.begin(), text.end());  // no zero behind it
    const Parsed parsed = parse({exact.data(), exact.size()}, seed.code, format);
    if (parsed.result == ZoResult::refused) {
      ASSERT_EQ(parsed.value, kUntouched);
      continue;
    }
    ++accepted;
    ASSERT_TRUE(parsed.result == 0 || std::isinf(parsed.value));
    if (std::isnan(parsed.value)) continue;
    ASSERT_EQ(parse(print(parsed.value, seed.code, format), seed.code, format),
              (Parsed{0, parsed.value}))
        << testing::PrintToString(text);
  }
  EXPECT_TRUE(accepted > kRounds / 20 && accepted < kRounds * 19 / 20) << accepted;
}

class ImpatientUnits : public ZoStdUnits {
 public:
  using ZoStdUnits::ZoStdUnits;
  int timeOut() override { return 0; }
};

TEST(UnitsService, PrintsAndReadsByTheSettingsOfTheCode) {
  ZoStdUnits units(L'.', 0);
  ZoString text;
  double value = 0;
  EXPECT_EQ(units.print(1234.5, Code::Length, text), 0);
  EXPECT_EQ(text, ZoString(L"1234.5 mm"));
  wchar_t name[] = L"IN";
  EXPECT_EQ(units.setFormat(Code::XDistance, inUnit(name, 1)), 0);
  name[0] = L'x';  // the service keeps a text of its own
  EXPECT_EQ(units.print(254, Code::Length, text), 0);
  EXPECT_EQ(text, ZoString(L"10.0 in"));
  EXPECT_EQ(units.parse(L"2", Code::Length, value), 0);
  EXPECT_EQ(value, 50.8);
  EXPECT_EQ(units.print(254, Code::Mass, text), 0);
  EXPECT_EQ(text, ZoString(L"254 kg"));

  EXPECT_EQ(units.setSeparators(L',', L'.'), 0);
  EXPECT_EQ(units.setSeparators(L',', L','), ZoResult::refused);
  EXPECT_EQ(units.print(254000, Code::Length, text), 0);
  EXPECT_EQ(text, ZoString(L"10.000,0 in"));
  Format format;
  EXPECT_EQ(units.getFormat(Code::Length, format), 0);
  EXPECT_EQ(std::wstring(format.unit), L"in");
  EXPECT_TRUE(format.precision == 1 && format.decimal == L',' && format.grouping == L'.');
  EXPECT_EQ(units.setFormat(Code::Length, inUnit(L"kg")), ZoResult::refused);
  EXPECT_EQ(units.getFormat(Code::Int, format), ZoResult::refused);
  EXPECT_EQ(units.parse(nullptr, Code::Length, value), ZoResult::refused);

  wchar_t decimal = 0, grouping = 0;
  EXPECT_EQ(ZoStdUnits(L'5', 0).getSeparators(decimal, grouping), 0);
  EXPECT_TRUE(decimal == L'.' && grouping == 0);
}

TEST(UnitsService, WhileAnotherThreadHoldsTheGuardNothingIsDone) {
  ImpatientUnits units(L'.', 0);
  ASSERT_EQ(units.waitToWrite(), 0);
  std::thread([&] {
    ZoString text(L"untouched");
    double value = kUntouched;
    wchar_t decimal = L'x', grouping = L'y';
    Format format = inUnit(L"untouched");
    EXPECT_EQ(units.print(1, Code::Length, text), ZoResult::timeOut);
    EXPECT_EQ(units.parse(L"1", Code::Length, value), ZoResult::timeOut);
    EXPECT_EQ(units.getFormat(Code::Length, format), ZoResult::timeOut);
    EXPECT_EQ(units.getSeparators(decimal, grouping), ZoResult::timeOut);
    EXPECT_EQ(units.setSeparators(L',', 0), ZoResult::timeOut);
    EXPECT_EQ(units.setFormat(Code::Length, inUnit(L"m")), ZoResult::timeOut);
    EXPECT_TRUE(text == ZoString(L"untouched") && value == kUntouched && decimal == L'x');
    EXPECT_EQ(std::wstring(format.unit), L"untouched");
  }).join();
  units.doneWriting();
  ZoString text;
  EXPECT_EQ(units.print(1, Code::Length, text), 0);
  EXPECT_EQ(text, ZoString(L"1 mm"));
}

TEST(UnitsService, GoesWithTheLibraryOnly) {
  ZoUnits* const units = new ZoStdUnits(L'.', 0);
  EXPECT_EQ(units->release(nullptr), 1);
  EXPECT_EQ(units->release(L"other"), 1);
  EXPECT_EQ(units->release(L"ZO_Com"), 0);
}

}  // namespace
