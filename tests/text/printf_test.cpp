#include <gtest/gtest.h>
#include <zo/names/file_name.h>
#include <zo/system/sys_str.h>
#include <zo/text/printf.h>
#include <zo/text/string.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

#include "support/printers.h"

namespace {

template <class... Arguments>
std::wstring print(zo::FormatFor<Arguments...> format, const Arguments&... arguments) {
  wchar_t text[1024];
  const std::size_t length =
      zo::printTo(text, std::size(text), format.text(), zo::argumentsOf(arguments...));
  EXPECT_EQ(length, std::wcslen(text));
  return text;
}

enum Plain { kThree = 3 };
enum class Byte : unsigned char { kMost = 255 };

TEST(Printf, ConvertsWhatFitsTheConversion) {
  const ZoString text(L"text");
  const wchar_t* const null = nullptr;
  const ZoSysStr own(L"own"), none;
  EXPECT_EQ(
      print(L"%s|%s|%s|%s|%s|%S|%s", text, text.view(), std::wstring(L"w"),
            ZoFileName(L"c:\\a.txt"), std::filesystem::path(L"p"), "narrow", std::string("n")),
      L"text|text|w|c:\\a.txt|p|narrow|n");
  EXPECT_EQ(print(L"%s %s %s", own, none, null), L"own (null) (null)");
  EXPECT_EQ(print(L"%6s|%-6s|%.2s|%*.*s|%-*s|", text, L"ab", text, 4, 1, text, -3, L"x"),
            L"  text|ab    |te|   t|x  |");
  EXPECT_EQ(print(L"%d %hd %lld %I64d %zu", ~0ull, 70000, 1, 2, 3),
            L"18446744073709551615 70000 1 2 3");
  EXPECT_EQ(print(L"%x %X %#o %u", short{-1}, std::int64_t{-1}, 8, -1),
            L"ffff FFFFFFFFFFFFFFFF 010 4294967295");
  EXPECT_EQ(print(L"%+5d|%-5i|%05d|% d", 7, 7, std::numeric_limits<std::int64_t>::min(), kThree),
            L"   +7|7    |-9223372036854775808| 3");
  EXPECT_EQ(print(L"%.2f %g %f %5.1f", 2, 0.5f, Byte::kMost, 1.25L), L"2.00 0.5 255.000000   1.3");
  EXPECT_EQ(print(L"%c%c%C %d", L'\u03C0', 'b', 67, L'a'), L"\u03C0bC 97");
  EXPECT_NE(print(L"%p", &text), print(L"%p", nullptr));
  EXPECT_EQ(print(L"100%% of 0"), L"100% of 0");
  EXPECT_EQ(print(L"%s", std::wstring(5000, L'x')).size(), 1023u);
  EXPECT_EQ(print(L"%2000.1500f|", 1.0).size(), 1023u);
}

TEST(Printf, WhatDoesNotFitAFormatOfTheMomentIsPrintedAsWhatItIs) {
  const wchar_t* const format = L"%d %s %.1f %c %p";
  EXPECT_EQ(print(format, L"text", 5, L"t", L"word", 1.5), L"text 5 t word 1.5");
  EXPECT_EQ(print(format, 1), L"1 %s %.1f %c %p");
  EXPECT_EQ(print(format), format);
  const wchar_t* const odd[] = {L"%n", L"%y", L"100%", L"%", L"%-5", L"%*"};
  for (const wchar_t* each : odd) EXPECT_EQ(print(each, 1), each);
  wchar_t buffer[] = L"%s";
  EXPECT_EQ(print(buffer, 1), L"1");
  EXPECT_EQ(print(ZoString(L"no more than asked"), 1, 2), L"no more than asked");
  EXPECT_EQ(print(nullptr, 1), L"");
}

}  // namespace
