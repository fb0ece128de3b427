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

namespace {

using Code = ZoTypeCode;
using Format = ZoUnitFormat;

#ifdef ZO_GUARDED
constexpr int kRounds = 1;
#else
constexpr int kRounds = 8;
#endif
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
  std::uniform_real_distribution<double> mantissa(1, 2);
  for (int i = 0; i < 8 * kRounds; ++i) {
    const int range = i % 2 ? 20 : 800;
    const int exponent = static_cast<int>(random() % (2u * static_cast<unsigned>(range))) - range;
    result.push_back(std::ldexp(mantissa(random), exponent));
    result.push_back(std::nextafter(-result[result.size() / 2], 0));
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
  forEachUnit([&](Code code, const wchar_t* name) {
    Format format = inUnit(name);
    expectLaw(code, format);
    format.withName = false;
    format.decimal = L',';
    format.grouping = L'.';
    expectLaw(code, format);
    format.form = Format::Fraction;
    expectLaw(code, format);
  });
  expectLaw(Code::Angle, inForm(Format::DegMinSec));
  for (const Format::Form form : {Format::FeetInch, Format::FeetInchFraction})
    expectLaw(Code::Length, inForm(form));
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
  expectRead(Code::Angle, {{6.2831853071795864769, L"1 rev"}, {1.5707963267948966192, L"100 gon"}});
  expectRead(Code::Angle, {{2.9088820866572159615e-4, L"1'"}, {4.8481368110953599359e-6, L"1\""}});
  expectRead(Code::Time, {{3600, L"1 h"}, {86400, L"1 d"}});
  expectRead(Code::Mass, {{0.45359237, L"1 lb"}, {0.028349523125, L"1 oz"}, {1000, L"1 t"}});
  expectRead(Code::Area, {{645.16, L"1 in2"}, {92903.04, L"1 ft2"}, {1e10, L"1 ha"}});
  expectRead(Code::Volume, {{1e6, L"1 l"}, {16387.064, L"1 in3"}, {3785411.784, L"1 gal"}});
  expectRead(Code::Force, {{4.4482216152605, L"1 lbf"}, {9.80665, L"1 kgf"}, {1e6, L"1 MN"}});
  expectRead(Code::SpringRate, {{0.17512683524647636, L"1 lbf/in"}, {1, L"1 kN/m"}});
  expectRead(Code::Pressure, {{0.0068947572931683613, L"1 psi"}, {0.1, L"1 bar"}});
  expectRead(Code::Density, {{7.85e-6, L"7.85 g/cm3"}, {2.7679904710203127e-5, L"1 lb/in3"}});
  expectRead(Code::Speed, {{1e4, L"36 km/h"}, {514.44444444444444, L"1 kn"}, {447.04, L"1 mph"}});
  expectRead(Code::Power, {{745.69987158227022, L"1 hp"}, {735.49875, L"1 PS"}});
  expectRead(Code::Torque, {{112.98482902761670, L"1 lbf*in"}, {1355.8179483314004, L"1 lbf*ft"}});
  expectRead(Code::LinearDensity, {{0.0014881639435695538, L"1 lb/ft"}});
  expectRead(Code::ForceOfCurrent, {{0.005, L"5 mA"}});
  expectRead(Code::Resistance, {{4700, L"4.7 k\u03A9"}});
}

TEST(Units, EveryFormLooksAsDocumented) {
  Format grouped = inUnit(L"mm", 2);
  grouped.grouping = L',';
  Format trimmed = inUnit(L"mm", 3);
  trimmed.trimZeros = true;
  const auto fraction = [](int precision) { return inForm(Format::Fraction, precision); };
  expectPrinted(Code::Length, {},
                {{12.5, L"12.5 mm"}, {1e21, L"1e+21 mm"}, {1.25e-8, L"1.25e-8 mm"}});
  expectPrinted(Code::Length, grouped,
                {{1234567.891, L"1,234,567.89 mm"}, {999.999, L"1,000.00 mm"}});
  expectPrinted(Code::Length, grouped, {{-123456, L"-123,456.00 mm"}, {-0.001, L"0.00 mm"}});
  expectPrinted(Code::Length, trimmed, {{1.5, L"1.5 mm"}, {-2, L"-2 mm"}});
  expectPrinted(Code::Length, inUnit(nullptr, 0), {{2.5, L"3 mm"}, {1e30, L"1e+30 mm"}});
  expectPrinted(Code::ThreadFactor, inUnit(L"%"), {{0.125, L"12.5%"}});
  expectPrinted(Code::Angle, inForm(Format::DegMinSec, 2),
                {{-12.582408333333 * kDegree, L"-12\u00B034'56.67\""}});
  expectPrinted(Code::Angle, inForm(Format::DegMinSec, 0),
                {{59.99999 * kDegree, L"60\u00B00'0\""}, {-0.4 * kDegree / 3600, L"0\u00B00'0\""}});
  expectPrinted(Code::Length, fraction(Format::kExact), {{92.075, L"3 5/8\""}, {83.82, L"3.3\""}});
  expectPrinted(Code::Length, fraction(6), {{25.4 / 64, L"1/64\""}, {25.4 * 2.999, L"3\""}});
  expectPrinted(Code::Length, fraction(6), {{-25.4 * 0.75, L"-3/4\""}, {-0.001, L"0\""}});
  expectPrinted(Code::Length, inForm(Format::FeetInch, 2),
                {{1612.9, L"5'-3.50\""}, {304.8 * 5 - 0.01, L"5'-0.00\""}});
  expectPrinted(Code::XDistance, inForm(Format::FeetInchFraction, 4),
                {{-1612.9, L"-5'-3 1/2\""}, {304.8 * 6 - 0.01, L"6'-0\""}, {88.9, L"3 1/2\""}});
}

TEST(Units, ReadsWhatPeopleWriteAndRefusesWhatIsNoValue) {
  expectRead(Code::Length, {{12, L"12"}, {12.5, L"  +12.5mm \t"}, {1500, L"1.5E3 MM"}});
  expectRead(Code::Length, {{5, L".5 cm"}, {1.0 / 3, L"1/3 mm"}, {0, L"1e-400 km"}});
  expectRead(Code::Length, {{3.625 * kInch, L"3-5/8 in"}, {63.5 * kInch, L"5'-3 1/2\""}});
  expectRead(Code::Length, {{63.5 * kInch, L"5' 3.5\""}, {-63 * kInch, L"-5ft 3in"}});
  expectRead(Code::Length, {{63 * kInch, L"5'3"}, {kInfinity, L"1e400 nm"}});
  // Half way between two doubles, and a little more at the 39th digit.
  expectRead(Code::Length, {{9007199254740994.0, L"9007199254740993.00000000000000000000001"}});
  expectRead(Code::Angle, {{12.51 * kDegree, L"12d30'36\""}, {12.01 * kDegree, L"12\u00B0 36\""}});
  expectRead(Code::Time, {{5400, L"1 h 30 min"}, {93600, L"1d2h"}});
  expectRead(Code::Pressure, {{3, L"3 mpa"}, {3, L"3 N/MM\u00B2"}});
  // Nothing, half of something, or too much.
  for (const wchar_t* text : {L"",      L"  ",     L"mm",   L"-",      L"--5",   L"- 5",    L"5 kg",
                              L"5 mmm", L"5 3",    L"5-3",  L"3\" 5'", L"5' 4'", L"5' 3 2", L"5' -",
                              L"1/ in", L"1/0 in", L"3 5/", L"1e2/3",  L"12,5",  L"3.5 1/2"})
    EXPECT_EQ(parse(text, Code::Length), kRefused) << testing::PrintToString(std::wstring(text));
  EXPECT_EQ(parse(L"5 mn", Code::Force), kRefused) << "milli or mega";
  EXPECT_EQ(parse(L"5", Code::Length, inUnit(L"in")), (Parsed{0, 127}));
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
  int accepted = 0, round = 0;
  for (; round < 2000 * kRounds; ++round) {
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
  EXPECT_TRUE(accepted > round / 20 && accepted < round * 19 / 20) << accepted;
}

TEST(UnitsService, KeepsAFormatForEachQuantityAndSeparatorsForAll) {
  ZoStdUnits service(L'x', L'\0');  // no separator: taken as '.'
  const auto printed = [&](double value, Code code) {
    ZoString text(L"untouched");
    return service.print(value, code, text) ? L"refused" : std::wstring(text.view());
  };
  EXPECT_EQ(printed(1234.5, Code::Length), L"1234.5 mm");
  EXPECT_EQ(service.setSeparators(L',', L'.'), 0);
  ZoString given(L"\"");
  Format format = inUnit(given, 2);
  format.decimal = L',';
  format.grouping = L'.';
  EXPECT_EQ(service.setFormat(Code::Length, format), 0);
  given = L"gone";  // the service does not keep the caller's text
  EXPECT_EQ(printed(2540 * 12.7, Code::XDistance), L"1.270,00\"");
  EXPECT_EQ(printed(1234.5, Code::Mass), L"1.234,5 kg");
  EXPECT_EQ(printed(1, Code::String), L"refused");
  double value = kUntouched;
  EXPECT_EQ(service.parse(L"1.270,5", Code::Length, value), 0);
  EXPECT_EQ(value, 32270.7);
  EXPECT_EQ(service.parse(nullptr, Code::Length, value), ZoResult::refused);

  // A form with units of its own leaves the chosen unit for the forms after it.
  format = inUnit(L"m");
  format.form = Format::FeetInch;
  EXPECT_EQ(service.setFormat(Code::Length, format), 0);
  Format kept;
  EXPECT_EQ(service.getFormat(Code::XDistance, kept), 0);
  EXPECT_STREQ(kept.unit, L"m");
  EXPECT_EQ(kept.form, Format::FeetInch);
  wchar_t decimal = 0, grouping = 1;
  EXPECT_EQ(service.getSeparators(decimal, grouping), 0);
  EXPECT_TRUE(decimal == L'.' && grouping == 0) << "those of the last format";

  const Format refused[] = {inUnit(L"kg"), inForm(Format::DegMinSec), inUnit(nullptr, 19)};
  for (const Format& each : refused)
    EXPECT_EQ(service.setFormat(Code::Length, each), ZoResult::refused);
  EXPECT_EQ(service.setFormat(Code::String, {}), ZoResult::refused);
  EXPECT_EQ(service.setSeparators(L'5', 0), ZoResult::refused);
  EXPECT_EQ(service.getFormat(Code::Length, kept), 0);
  EXPECT_STREQ(kept.unit, L"m");
}

}  // namespace
