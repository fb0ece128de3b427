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
#include <utility>

#include "support/printers.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kUntouched = 4711;

bool identical(double a, double b) {
  return std::isnan(a) ? std::isnan(b)
                       : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// A bar stands where the number ends.
void expectReal(const wchar_t* marked, double value, int result = 0, wchar_t decimal = L'.',
                wchar_t grouping = 0) {
  SCOPED_TRACE(testing::PrintToString(ZoString(marked)));
  std::wstring text = marked;
  const size_t bar = text.find(L'|');
  text.erase(bar, 1);
  double read = kUntouched;
  unsigned int end = 99;
  EXPECT_EQ(ZoStrToReal(text, read, &end, decimal, grouping), result);
  EXPECT_TRUE(identical(read, value)) << read;
  EXPECT_EQ(end, bar);
}

TEST(StrToReal, TakesTheLongestNumberAndTellsWhereItEnds) {
  for (const auto& [text, value] :
       {std::pair{L" \t\r\n+1.5|x", 1.5},
        {L"-.5e1|", -5},
        {L"1|e+", 1},
        {L"1.|.2", 1},
        {L"INFinity|", kInf},
        {L"nan|(1)", kNaN},
        {L"1.7976931348623158079e308|", std::numeric_limits<double>::max()},
        {L"4.9e-324|", kTiny},
        {L"-1e-324|", -0.0},
        {L"1e-99999999999999999999|", 0}})
    expectReal(text, value);
  for (const wchar_t* text : {L"|", L"| ", L"|-", L"|-.", L"|.e5", L"|--1", L"|in", L"|\xFF11"})
    expectReal(text, kUntouched, ZoResult::refused);
  for (const wchar_t* text : {L"1e309|", L"1.8e308| ", L"1e99999999999999999999|"})
    expectReal(text, kInf, ZoResult::overflow);
}

TEST(StrToReal, GroupsAreThreeDigitsBeforeTheDecimalCharacter) {
  for (const auto& [text, value] : {std::pair{L"1,234,567.5|", 1234567.5},
                                    {L"1|,2345", 1},
                                    {L"1234|,567", 1234},
                                    {L"0.123|,456", 0.123}})
    expectReal(text, value, 0, L'.', L',');
  expectReal(L"|,123", kUntouched, ZoResult::refused, L'.', L',');
  expectReal(L"1.234.567,5|", 1234567.5, 0, L',', L'.');
}

// Halfway cases that only the last of many digits decides, beyond what any buffer would keep.
TEST(StrToReal, EveryDigitOfALongTextCounts) {
  const auto read = [](const std::wstring& text) {
    double value = 0;
    EXPECT_EQ(ZoStrToReal(text, value), 0);
    return value;
  };
  // 2^-1074 * 1.5 exactly, the longest tie there is: 751 digits after the leading zeros.
  wchar_t tie[1200];
  ASSERT_GT(std::swprintf(tie, 1200, L"%.1075f", 0x1.8p-1074), 1000);
  EXPECT_EQ(read(tie), kTiny * 2);
  EXPECT_EQ(read(tie + std::wstring(5000, L'0') + L"1"), kTiny * 2);
  // 1 + 2^-53 is a tie to even (1); anything behind it makes it 1 + 2^-52.
  const std::wstring one = L"1.00000000000000011102230246251565404236316680908203125";
  for (const std::wstring& zeros : {std::wstring(), std::wstring(900, L'0')}) {
    EXPECT_EQ(read(one + zeros), 1.0);
    EXPECT_EQ(read(one + zeros + L"1"), 1 + 0x1p-52);
  }
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
       {Case{L" -12.5", 0, -12, 4}, Case{L"+7e3", 0, 7, 2},
        Case{L"9223372036854775807", 0, INT64_MAX, 19},
        Case{L"9223372036854775808", ZoResult::overflow, INT64_MAX, 19},
        Case{L"-9223372036854775808", 0, INT64_MIN, 20},
        Case{L"-9223372036854775809x", ZoResult::overflow, INT64_MIN, 20},
        Case{L"1 234 567", 0, 1234567, 9, L' '}, Case{L"", ZoResult::refused, 4711, 0},
        Case{L"-", ZoResult::refused, 4711, 0}}) {
    std::int64_t value = 4711;
    unsigned int end = 99;
    EXPECT_EQ(ZoStrToInt(c.text, value, &end, c.grouping), c.result)
        << testing::PrintToString(ZoString(c.text));
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(end, c.end);
  }
}

TEST(RealToStr, IsTheShortestTextThatReadsBackExactly) {
  for (const auto& [value, text] : {std::pair{-0.0, L"-0"},
                                    {-2.5, L"-2.5"},
                                    {1e100, L"1e+100"},
                                    {0.1 + 0.2, L"0.30000000000000004"},
                                    {kTiny, L"5e-324"},
                                    {-kInf, L"-inf"},
                                    {-kNaN, L"nan"}})
    EXPECT_EQ(ZoRealToStr(value), text);
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
      ASSERT_EQ(ZoStrToReal(buffer, back, &end), 0);
      EXPECT_TRUE(identical(value, back));
      EXPECT_EQ(end, length);
      const auto number = static_cast<std::int64_t>(random() >> (i % 64));
      std::int64_t same = 0;
      EXPECT_EQ(ZoStrToInt(ZoIntToStr(number), same), 0);
      EXPECT_EQ(same, number);
    }
  }
  std::setlocale(LC_ALL, "C");
}

TEST(NumberText, WritesUnsignedNumbersUpToTheLargest) {
  const std::pair<std::uint64_t, const wchar_t*> cases[] = {
      {0, L"0"},
      {9, L"9"},
      {10, L"10"},
      {9223372036854775807u, L"9223372036854775807"},
      {9223372036854775808u, L"9223372036854775808"},
      {~std::uint64_t{0}, L"18446744073709551615"}};
  for (const auto& [number, text] : cases) {
    wchar_t buffer[ZoNumberTextSize];
    EXPECT_EQ(ZoIntToStr(number, buffer), std::wcslen(text));
    EXPECT_STREQ(buffer, text);
    EXPECT_EQ(ZoIntToStr(number), text);
  }
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
