#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/units.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"
#include "system/other_thread.h"

namespace {

using Code = ZoTypeCode;
using Format = ZoUnitFormat;

constexpr double kInch = 25.4;
constexpr double kDegree = 3.14159265358979323846 / 180;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

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

struct Row {
  double value;
  std::wstring text;
};
void expectPrinted(Code code, const Format& format, const std::vector<Row>& rows) {
  for (const auto& [value, text] : rows) EXPECT_EQ(print(value, code, format), text);
}
void expectRead(Code code, const std::vector<Row>& rows) {
  for (const auto& [value, text] : rows) {
    const Parsed parsed = parse(text, code);
    EXPECT_EQ(parsed.result, std::isinf(value) ? ZoResult::overflow : 0);
    EXPECT_DOUBLE_EQ(parsed.value, value) << testing::PrintToString(text);
  }
}

// Calls use(code, name) for every unit there is.
template <class Use>
void forEachUnit(Use use) {
  std::vector<Code> codes{Code::XReal, Code::XDistance, Code::XScale};
  for (int i = static_cast<int>(Code::Real); i <= static_cast<int>(Code::Resistance); ++i)
    codes.push_back(static_cast<Code>(i));
  for (const Code code : codes)
    for (unsigned int i = 0; const wchar_t* name = ZoUnitName(code, i); ++i) use(code, name);
}

// Values where conversions break: small and large, full of digits, next to round numbers.
std::vector<double> values() {
  std::vector<double> result = {0, 1e-250, 5e-8, 0.1, 1.0 / 3, 0.30000000000000004, 1, 25.4};
  result.insert(result.end(), {123456.789, 999999.99999999988, 9007199254740993.0, 1e22, 1e250});
  std::mt19937_64 random(7);
#ifdef ZO_GUARDED
  constexpr int kRandom = 8;
#else
  constexpr int kRandom = 60;
#endif
  std::uniform_real_distribution<double> mantissa(1, 2);
  for (int i = 0; i < kRandom; ++i) {
    const int range = i % 2 ? 20 : 800;
    const int exponent = static_cast<int>(random() % (2u * static_cast<unsigned>(range))) - range;
    result.push_back(std::ldexp(mantissa(random), exponent));
    result.push_back(std::nextafter(-result[result.size() / 2], 0));
  }
  return result;
}

size_t significantDigits(std::wstring text) {
  text.resize(std::min(text.find_first_of(L"e "), text.size()));
  std::erase_if(text, [](wchar_t c) { return c < L'0' || c > L'9'; });
  const size_t last = text.find_last_not_of(L'0');
  return last == std::wstring::npos ? 0 : last + 1 - text.find_first_not_of(L'0');
}

TEST(Units, ExactTextReadsBackAsTheSameValueInEveryUnitFormAndSeparator) {
  const std::vector<double> all = values();
  const auto expectLaw = [&](Code code, const Format& format) {
    for (const double value : all) {
      const std::wstring text = print(value, code, format);
      ASSERT_EQ(parse(text, code, format), (Parsed{0, value}))
          << "code " << static_cast<unsigned int>(code) << " text " << testing::PrintToString(text);
      if (format.form == Format::Decimal && !format.grouping) {
        ASSERT_LE(significantDigits(text), 17u) << testing::PrintToString(text);
      }
    }
  };
  forEachUnit([&](Code code, const wchar_t* name) {
    Format format = inUnit(name);
    expectLaw(code, format);
    format.withName = false;
    format.decimal = L',';
    format.grouping = L'.';
    expectLaw(code, format);
    format.withName = true;
    format.form = Format::Fraction;
    expectLaw(code, format);
  });
  expectLaw(Code::Angle, inForm(Format::DegMinSec));
  for (const Code code : {Code::Length, Code::XDistance})
    for (const Format::Form form : {Format::Fraction, Format::FeetInch, Format::FeetInchFraction})
      expectLaw(code, inForm(form));
  // Beyond the promised range the powers of ten still hold, and so does what is not finite.
  for (const double value : {1e308, 4.9e-324, kInfinity, -kInfinity})
    for (const wchar_t* unit : {L"mm", L"km", L"um"})
      EXPECT_EQ(parse(print(value, Code::Length, inUnit(unit)), Code::Length, inUnit(unit)),
                (Parsed{0, value}));
}

TEST(Units, WithAPrecisionTheTextIsNearestAndPrintsTheSameAgain) {
  forEachUnit([](Code code, const wchar_t* name) {
    for (const int precision : {0, 1, 3, 9}) {
      const Format format = inUnit(name, precision);
      for (const double number : {0.0, 0.4999, 0.5, 1.0005, 12.3456789, 98765.4321, -2.75}) {
        double value = 0, error = 0;
        ASSERT_EQ(ZoConvertUnits(number, code, name, nullptr, value), 0);
        const std::wstring text = print(value, code, format);
        const Parsed back = parse(text, code, format);
        ASSERT_EQ(back.result, 0);
        ASSERT_EQ(ZoConvertUnits(back.value - value, code, nullptr, name, error), 0);
        EXPECT_LE(std::fabs(error), 0.5000001 * std::pow(10, -precision));
        EXPECT_EQ(print(back.value, code, format), text);
      }
    }
  });
}

// Figures that were worked out elsewhere: definitions and tables.
TEST(Units, FactorsAreThoseOfTheDefinitions) {
  expectRead(Code::Length, {{25.4, L"1 in"}, {304.8, L"1 ft"}, {914.4, L"1 yd"}});
  expectRead(Code::Length, {{1609344, L"1 mi"}, {0.0254, L"1 mil"}, {0.0025, L"2.5 \u00B5m"}});
  expectRead(Code::Angle,
             {{3.14159265358979311600, L"180 deg"}, {6.2831853071795864769, L"1 rev"}});
  expectRead(Code::Angle, {{2.9088820866572159615e-4, L"1'"}, {4.8481368110953599359e-6, L"1\""}});
  expectRead(Code::Angle, {{1.5707963267948966192, L"100 gon"}});
  expectRead(Code::Time, {{3600, L"1 h"}, {86400, L"1 d"}});
  expectRead(Code::Mass, {{0.45359237, L"1 lb"}, {0.028349523125, L"1 oz"}, {1000, L"1 t"}});
  expectRead(Code::Area, {{645.16, L"1 in2"}, {92903.04, L"1 ft2"}, {1e10, L"1 ha"}});
  expectRead(Code::Volume, {{1e6, L"1 l"}, {16387.064, L"1 in3"}, {3785411.784, L"1 gal"}});
  expectRead(Code::Force, {{4.4482216152605, L"1 lbf"}, {9.80665, L"1 kgf"}, {1e6, L"1 MN"}});
  expectRead(Code::Force, {{1e-3, L"1 mN"}});
  expectRead(Code::SpringRate, {{0.17512683524647636, L"1 lbf/in"}, {1, L"1 kN/m"}});
  expectRead(Code::Pressure, {{0.0068947572931683613, L"1 psi"}, {0.1, L"1 bar"}});
  expectRead(Code::Density, {{7.85e-6, L"7.85 g/cm3"}, {2.7679904710203127e-5, L"1 lb/in3"}});
  expectRead(Code::Speed, {{1e4, L"36 km/h"}, {1000, L"60 m/min"}, {514.44444444444444, L"1 kn"}});
  expectRead(Code::Speed, {{447.04, L"1 mph"}});
  expectRead(Code::Power, {{745.69987158227022, L"1 hp"}, {735.49875, L"1 PS"}});
  expectRead(Code::Torque, {{112.98482902761670, L"1 lbf*in"}, {1355.8179483314004, L"1 lbf*ft"}});
  expectRead(Code::LinearDensity, {{0.0014881639435695538, L"1 lb/ft"}});
  expectRead(Code::Voltage, {{230, L"230 V"}});
  expectRead(Code::ForceOfCurrent, {{0.005, L"5 mA"}});
  expectRead(Code::Resistance, {{4700, L"4.7 k\u03A9"}});
  expectRead(Code::ThreadFactor, {{0.625, L"62.5%"}});
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
  const auto fraction = [](int precision) { return inForm(Format::Fraction, precision); };
  expectPrinted(Code::Length, {},
                {{12.5, L"12.5 mm"}, {1e21, L"1e+21 mm"}, {1e-6, L"0.000001 mm"}});
  expectPrinted(Code::Length, {}, {{1e20, L"100000000000000000000 mm"}, {1.25e-8, L"1.25e-8 mm"}});
  expectPrinted(Code::Length, grouped,
                {{1234567.891, L"1,234,567.89 mm"}, {999.999, L"1,000.00 mm"}});
  expectPrinted(Code::Length, grouped, {{-123456, L"-123,456.00 mm"}, {-0.001, L"0.00 mm"}});
  expectPrinted(Code::Length, trimmed, {{1.5, L"1.5 mm"}, {-2, L"-2 mm"}});
  expectPrinted(Code::Length, bare, {{0.1, L"0.1"}});
  expectPrinted(Code::Length, comma, {{1234.5, L"1,2345 m"}});
  expectPrinted(Code::Length, inUnit(L"\""), {{88.9, L"3.5\""}});
  expectPrinted(Code::Length, inUnit(L"IN"), {{88.9, L"3.5 in"}});
  expectPrinted(Code::Length, inUnit(nullptr, 9), {{1.26e-8, L"0.000000013 mm"}});
  expectPrinted(Code::Length, inUnit(nullptr, 0), {{2.5, L"3 mm"}, {1e30, L"1e+30 mm"}});
  expectPrinted(Code::Real, inUnit(nullptr, 2), {{0.125, L"0.13"}});
  expectPrinted(Code::ThreadFactor, inUnit(L"%"), {{0.125, L"12.5%"}});
  expectPrinted(Code::Angle, inUnit(L"deg"), {{0.5235987755982989, L"30 deg"}});
  expectPrinted(Code::Angle, inForm(Format::DegMinSec), {{12.5 * kDegree, L"12\u00B030'0\""}});
  expectPrinted(Code::Angle, inForm(Format::DegMinSec, 2),
                {{-12.582408333333 * kDegree, L"-12\u00B034'56.67\""}});
  expectPrinted(Code::Angle, inForm(Format::DegMinSec, 0),
                {{59.99999 * kDegree, L"60\u00B00'0\""}, {0.5 * kDegree / 3600, L"0\u00B00'1\""}});
  expectPrinted(Code::Angle, inForm(Format::DegMinSec, 0),
                {{-0.4 * kDegree / 3600, L"0\u00B00'0\""}});
  expectPrinted(Code::Length, fraction(Format::kExact), {{92.075, L"3 5/8\""}, {83.82, L"3.3\""}});
  expectPrinted(Code::Length, fraction(1), {{92.075, L"3 1/2\""}});
  expectPrinted(Code::Length, fraction(0), {{92.075, L"4\""}});
  expectPrinted(Code::Length, fraction(6), {{25.4 / 64, L"1/64\""}, {25.4 * 2.999, L"3\""}});
  expectPrinted(Code::Length, fraction(6), {{-25.4 * 0.75, L"-3/4\""}, {-0.001, L"0\""}});
  expectPrinted(Code::Mass, fraction(2), {{0.75, L"3/4 kg"}});
  expectPrinted(Code::Length, inForm(Format::FeetInch), {{1612.9, L"5'-3.5\""}});
  expectPrinted(Code::Length, inForm(Format::FeetInch, 2),
                {{1612.9, L"5'-3.50\""}, {304.8 * 5 - 0.01, L"5'-0.00\""}});
  expectPrinted(Code::XDistance, inForm(Format::FeetInchFraction, 4),
                {{-1612.9, L"-5'-3 1/2\""}, {304.8 * 6 - 0.01, L"6'-0\""}, {88.9, L"3 1/2\""}});
}

TEST(Units, ReadsWhatPeopleWriteAndRefusesWhatIsNoValue) {
  expectRead(Code::Length, {{12, L"12"}, {12.5, L"  +12.5mm \t"}, {1500, L"1.5E3 MM"}});
  expectRead(Code::Length, {{5, L".5 cm"}, {1.0 / 3, L"1/3 mm"}, {0, L"1e-400 km"}});
  expectRead(Code::Length, {{3.625 * kInch, L"3 5/8\""}, {3.625 * kInch, L"3-5/8 in"}});
  expectRead(Code::Length, {{0.625 * kInch, L"5/8''"}, {63.5 * kInch, L"5'-3 1/2\""}});
  expectRead(Code::Length, {{63.5 * kInch, L"5' 3.5\""}, {-63 * kInch, L"-5ft 3in"}});
  expectRead(Code::Length, {{63 * kInch, L"5'3"}, {kInfinity, L"1e400 nm"}});
  expectRead(Code::Length, {{1, L"0.00000000000000000000000000000000000001e38"}});
  expectRead(Code::Angle, {{12.5 * kDegree, L"12\u00B030'"}, {12.51 * kDegree, L"12d30'36\""}});
  expectRead(Code::Angle, {{12.01 * kDegree, L"12\u00B0 36\""}});
  expectRead(Code::Time, {{5400, L"1 h 30 min"}, {93600, L"1d2h"}});
  expectRead(Code::Pressure, {{3, L"3 mpa"}, {3, L"3 N/MM\u00B2"}});
  // Nothing, half of something, or too much.
  for (const wchar_t* text :
       {L"",       L"  ",      L"mm",     L"-",         L"--5",
        L"- 5",    L"5 kg",    L"5 mmm",  L"5 mm x",    L"5 3",
        L"5 mm 3", L"5-3",     L"3\" 5'", L"5' 4'",     L"5' 3 2",
        L"5' -",   L"5' --3",  L"1/ in",  L"1/0 in",    L"3 5/",
        L"1e2/3",  L"3.5 1/2", L"12,5",   L"inf in ft", L"1/99999999999999999999"})
    EXPECT_EQ(parse(text, Code::Length), kRefused) << testing::PrintToString(std::wstring(text));
  EXPECT_EQ(parse(L"5 mn", Code::Force), kRefused) << "milli or mega";
  for (const Code code : {Code::Int, Code::String, Code::NoType})
    EXPECT_EQ(parse(L"5", code), kRefused);
  EXPECT_EQ(parse(L"-1e308 km", Code::Length), (Parsed{ZoResult::overflow, -kInfinity}));
  // Half way between two doubles, and a little more at the 39th digit.
  EXPECT_EQ(parse(L"9007199254740993.00000000000000000000001", Code::Length),
            (Parsed{0, 9007199254740994.0}));
  EXPECT_EQ(parse(L"5", Code::Length, inUnit(L"in")), (Parsed{0, 127}));
  EXPECT_EQ(parse(L"5", Code::Length, inForm(Format::FeetInch)), (Parsed{0, 127}));
  EXPECT_EQ(parse(L"180", Code::Angle, inForm(Format::DegMinSec)), parse(L"0.5 rev", Code::Angle));
  EXPECT_EQ(parse(std::wstring_view(L"5\0mm", 4), Code::Length), kRefused);
  EXPECT_TRUE(std::isnan(parse(L"nan", Code::Length).value));
}

TEST(Units, FormatsThatFitNotAreRefusedByPrintingAndReading) {
  const auto parted = [](wchar_t decimal, wchar_t grouping) {
    Format format;
    format.decimal = decimal;
    format.grouping = grouping;
    return format;
  };
  const auto expectRefused = [](Code code, const std::vector<Format>& formats) {
    for (const Format& format : formats) {
      ZoString text(L"untouched");
      EXPECT_EQ(ZoPrintUnits(1, code, format, text), ZoResult::refused);
      EXPECT_EQ(text, ZoString(L"untouched"));
      EXPECT_EQ(parse(L"1", code, format), kRefused);
    }
  };
  expectRefused(Code::Length, {parted(L'e', 0), parted(L'.', L'.'), parted(0, 0)});
  expectRefused(Code::Length, {inUnit(L"kg"), inUnit(L""), inUnit(L"mm", -2), inUnit(L"mm", 19)});
  expectRefused(Code::Length, {inForm(Format::DegMinSec), inForm(static_cast<Format::Form>(5))});
  expectRefused(Code::Angle, {inForm(Format::FeetInch)});
  expectRefused(Code::Mass, {inForm(Format::FeetInchFraction)});
  expectRefused(Code::Int, {{}});
  expectRefused(Code::String, {{}});
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
  const std::pair<Code, const wchar_t*> seeds[] = {
      {Code::Length, L"-5'-3 5/8\""},        {Code::Length, L"1,234.5678e-3 mm"},
      {Code::Angle, L"12\u00B034'56.78\""},  {Code::Time, L"2 d 4 h 30 min 1.5 s"},
      {Code::Pressure, L"17.25 N/mm\u00B2"}, {Code::Torque, L"1/3 lbf*ft"}};
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
    const auto& [code, seed] = seeds[random() % std::size(seeds)];
    std::wstring text = seed;
    for (unsigned int edits = 1 + random() % 3; edits > 0; --edits) {
      const size_t at = random() % (text.size() + 1);
      const unsigned int edit = random() % 3;
      if (edit > 0) text.erase(at, edit);
      if (edit < 2) text.insert(at, 1, kPieces[random() % kPieces.size()]);
    }
    const std::vector<wchar_t> exact(text.begin(), text.end());  // no zero behind it
    const Parsed parsed = parse({exact.data(), exact.size()}, code, format);
    if (parsed == kRefused || std::isnan(parsed.value)) continue;
    ++accepted;
    ASSERT_TRUE(parsed.result == 0 || std::isinf(parsed.value));
    ASSERT_EQ(parse(print(parsed.value, code, format), code, format), (Parsed{0, parsed.value}))
        << testing::PrintToString(text);
  }
  EXPECT_TRUE(accepted > kRounds / 20 && accepted < kRounds * 19 / 20) << accepted;
}

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
  zo::test::Impatient<ZoStdUnits> units(L'.', L'\0');
  ZoString text(L"untouched");
  double value = kUntouched;
  wchar_t decimal = L'x', grouping = L'y';
  Format format = inUnit(L"untouched");
  {
    const zo::test::HeldElsewhere held(units);
    for (const int code :
         {units.print(1, Code::Length, text), units.parse(L"1", Code::Length, value),
          units.getFormat(Code::Length, format), units.getSeparators(decimal, grouping),
          units.setFormat(Code::Length, inUnit(L"m")), units.setSeparators(L',', 0)})
      EXPECT_EQ(code, ZoResult::timeOut);
    EXPECT_TRUE(text == ZoString(L"untouched") && value == kUntouched && decimal == L'x');
    EXPECT_EQ(std::wstring(format.unit), L"untouched");
  }
  EXPECT_EQ(units.print(1, Code::Length, text), 0);
  EXPECT_EQ(text, ZoString(L"1 mm"));
}

}  // namespace
