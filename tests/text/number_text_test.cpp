// Numbers as text: what is taken, where it ends, and that no locale has a say.
#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/text/number_text.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cwchar>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kUntouched = 4711;

std::string shown(const wchar_t* text) { return testing::PrintToString(ZoString(text)); }

bool identical(double a, double b) {
  return std::isnan(a) ? std::isnan(b)
                       : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

struct RealCase {
  const wchar_t* text;
  int result;
  double value;
  unsigned int end;
  wchar_t decimal = L'.';
  wchar_t grouping = 0;
};

void expectReal(const RealCase& c) {
  double value = kUntouched;
  unsigned int end = 99;
  EXPECT_EQ(ZoStrToReal(c.text, value, &end, c.decimal, c.grouping), c.result) << shown(c.text);
  EXPECT_TRUE(identical(value, c.value)) << shown(c.text) << " gave " << value;
  EXPECT_EQ(end, c.end) << shown(c.text);
}

TEST(StrToReal, TakesTheLongestNumberAndTellsWhereItEnds) {
  for (const RealCase& c : std::vector<RealCase>{
           {L"0", 0, 0, 1},
           {L"-0", 0, -0.0, 2},
           {L" \t\r\n+1.5x", 0, 1.5, 8},
           {L"5.", 0, 5, 2},
           {L".5", 0, 0.5, 2},
           {L"-.5e1", 0, -5, 5},
           {L"1e5", 0, 1e5, 3},
           {L"1E+05", 0, 1e5, 5},
           {L"1e", 0, 1, 1},
           {L"1e+", 0, 1, 1},
           {L"1ex", 0, 1, 1},
           {L"1..2", 0, 1, 2},
           {L"0x10", 0, 0, 1},
           {L"INFinity", 0, kInf, 8},
           {L"-infinite", 0, -kInf, 4},
           {L"nan(1)", 0, kNaN, 3},
           {L"0.1", 0, 0.1, 3},
           {L"123456789012345678901234567890", 0, 123456789012345678901234567890.0, 30},
           {L"0e999999999999999999999", 0, 0, 23},
           {L"2.2250738585072011e-308", 0, 2.2250738585072011e-308, 23}})
    expectReal(c);
}

TEST(StrToReal, TellsNonsenseFromOverflowAndRoundsWhatIsTooSmallToZero) {
  for (const wchar_t* text : {L"", L" ", L"+", L"-", L".", L"-.", L"e5", L".e5", L"x1", L"--1",
                              L"in", L"na", L"\x0661", L"\xFF11", L","})
    expectReal({text, ZoResult::refused, kUntouched, 0});
  for (const RealCase& c : std::vector<RealCase>{
           {L"1e309", ZoResult::overflow, kInf, 5},
           {L"-1.8e308 ", ZoResult::overflow, -kInf, 8},
           {L"1e99999999999999999999", ZoResult::overflow, kInf, 22},
           {L"1.7976931348623157e308", 0, std::numeric_limits<double>::max(), 22},
           {L"1.7976931348623158079e308", 0, std::numeric_limits<double>::max(), 25},
           {L"4.9e-324", 0, kTiny, 8},
           {L"-1e-324", 0, -0.0, 7},
           {L"1e-99999999999999999999", 0, 0, 23}})
    expectReal(c);
}

TEST(StrToReal, GroupsAreThreeDigitsBeforeTheDecimalCharacter) {
  for (const RealCase& c :
       std::vector<RealCase>{{L"1,234,567.5", 0, 1234567.5, 11, L'.', L','},
                             {L"1.234.567,5", 0, 1234567.5, 11, L',', L'.'},
                             {L"1'234", 0, 1234, 5, L'.', L'\''},
                             {L"1,5", 0, 1, 1, L'.', L','},
                             {L"1,2345", 0, 1, 1, L'.', L','},
                             {L"1234,567", 0, 1234, 4, L'.', L','},
                             {L"1,,234", 0, 1, 1, L'.', L','},
                             {L"1,234,56", 0, 1234, 5, L'.', L','},
                             {L"0.123,456", 0, 0.123, 5, L'.', L','},
                             {L",123", ZoResult::refused, kUntouched, 0, L'.', L','},
                             {L"1,234", 0, 1.234, 5, L',', L','},
                             {L"1.5", 0, 1, 1, 0, 0}})
    expectReal(c);
}

// Halfway cases that only the last of many digits decides, beyond what any buffer would keep.
TEST(StrToReal, EveryDigitOfALongTextCounts) {
  // 2^-1074 * 1.5 exactly, the longest tie there is: 751 digits after the leading zeros.
  wchar_t tie[1200];
  const int length = std::swprintf(tie, 1200, L"%.1075f", 0x1.8p-1074);
  ASSERT_GT(length, 1000);
  for (const auto& [tail, expected] : std::vector<std::pair<std::wstring, double>>{
           {L"", kTiny * 2}, {std::wstring(5000, L'0') + L"1", kTiny * 2}}) {
    double value = 0;
    EXPECT_EQ(ZoStrToReal(tie + tail, value), 0);
    EXPECT_EQ(value, expected);
  }
  // 1 + 2^-53 is a tie to even (1); anything behind it makes it 1 + 2^-52.
  const std::wstring one = L"1.00000000000000011102230246251565404236316680908203125";
  for (const std::wstring& zeros : {std::wstring(), std::wstring(900, L'0')}) {
    double value = 0;
    ZoStrToReal(one + zeros, value);
    EXPECT_EQ(value, 1.0);
    ZoStrToReal(one + zeros + L"1", value);
    EXPECT_EQ(value, 1 + 0x1p-52);
  }
  double value = 0;
  unsigned int end = 0;
  EXPECT_EQ(ZoStrToReal(L"0." + std::wstring(2000, L'0') + L"1e2001", value, &end), 0);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(end, 2008u);
  EXPECT_EQ(ZoStrToReal(L"1" + std::wstring(2000, L'0') + L"e-2000", value), 0);
  EXPECT_EQ(value, 1);
}

TEST(StrToInt, HoldsItsLimitsAndTakesNoFraction) {
  struct Case {
    const wchar_t* text;
    int result;
    std::int64_t value;
    unsigned int end;
    wchar_t grouping = 0;
  };
  for (const Case& c :
       std::vector<Case>{{L"0", 0, 0, 1},
                         {L" -12.5", 0, -12, 4},
                         {L"+7e3", 0, 7, 2},
                         {L"9223372036854775807", 0, INT64_MAX, 19},
                         {L"9223372036854775808", ZoResult::overflow, INT64_MAX, 19},
                         {L"-9223372036854775808", 0, INT64_MIN, 20},
                         {L"-9223372036854775809x", ZoResult::overflow, INT64_MIN, 20},
                         {L"99999999999999999999999", ZoResult::overflow, INT64_MAX, 23},
                         {L"000000000000000000000000001", 0, 1, 27},
                         {L"1 234 567", 0, 1234567, 9, L' '},
                         {L"", ZoResult::refused, 4711, 0},
                         {L"-", ZoResult::refused, 4711, 0},
                         {L"x", ZoResult::refused, 4711, 0}}) {
    std::int64_t value = 4711;
    unsigned int end = 99;
    EXPECT_EQ(ZoStrToInt(c.text, value, &end, c.grouping), c.result) << shown(c.text);
    EXPECT_EQ(value, c.value) << shown(c.text);
    EXPECT_EQ(end, c.end) << shown(c.text);
  }
  EXPECT_EQ(ZoIntToStr(INT64_MIN), L"-9223372036854775808");
  EXPECT_EQ(ZoIntToStr(0), L"0");
}

TEST(RealToStr, IsTheShortestTextThatReadsBackExactly) {
  struct Case {
    double value;
    const wchar_t* text;
  };
  for (const Case& c :
       std::vector<Case>{{0, L"0"},
                         {-0.0, L"-0"},
                         {0.1, L"0.1"},
                         {-2.5, L"-2.5"},
                         {1234.5678, L"1234.5678"},
                         {100, L"100"},
                         {1e100, L"1e+100"},
                         {0.1 + 0.2, L"0.30000000000000004"},
                         {kTiny, L"5e-324"},
                         {std::numeric_limits<double>::max(), L"1.7976931348623157e+308"},
                         {kInf, L"inf"},
                         {-kInf, L"-inf"},
                         {-kNaN, L"nan"}})
    EXPECT_EQ(ZoRealToStr(c.value), c.text);
  EXPECT_EQ(ZoRealToStr(-2.5, L','), L"-2,5");
}

// Whatever the runtime's locale, the same text comes out and goes in.
TEST(NumberText, RoundTripsEveryBitPatternInEveryLocale) {
  std::mt19937_64 random(5);
  for (const char* locale : {"C", "", "German", "French_France.1252", "de-DE"}) {
    std::setlocale(LC_ALL, locale);
    for (int i = 0; i < 4000; ++i) {
      const auto value = std::bit_cast<double>(random());
      wchar_t buffer[ZoNumberTextSize];
      const unsigned int length = ZoRealToStr(value, buffer);
      ASSERT_EQ(std::wcslen(buffer), length);
      double back = 0;
      unsigned int end = 0;
      ASSERT_EQ(ZoStrToReal(buffer, back, &end), 0) << shown(buffer);
      EXPECT_TRUE(identical(value, back)) << shown(buffer);
      EXPECT_EQ(end, length);
      const auto number = static_cast<std::int64_t>(random() >> (i % 64));
      std::int64_t same = 0;
      EXPECT_EQ(ZoStrToInt(ZoIntToStr(number), same), 0);
      EXPECT_EQ(same, number);
    }
    EXPECT_EQ(ZoRealToStr(1234.5), L"1234.5") << locale;
  }
  std::setlocale(LC_ALL, "C");
}

// The runtime's own conversion as the second opinion on texts of all lengths.
TEST(NumberText, AgreesWithTheRuntimeOnRandomTexts) {
  std::mt19937 random(6);
  for (int i = 0; i < 5000; ++i) {
    std::string text;
    for (unsigned int n = 1 + random() % 25; n > 0; --n)
      text += static_cast<char>('0' + random() % 10);
    text.insert(random() % (text.size() + 1), ".");
    text += "e" + std::to_string(static_cast<int>(random() % 660) - 330);
    double value = kUntouched;
    const int result = ZoStrToReal(std::wstring(text.begin(), text.end()), value);
    const double expected = std::strtod(text.c_str(), nullptr);
    EXPECT_TRUE(identical(value, expected)) << text;
    EXPECT_EQ(result == ZoResult::overflow, std::isinf(expected)) << text;
  }
}

}  // namespace
