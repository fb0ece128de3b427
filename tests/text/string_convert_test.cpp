// Text on its way in and out: code pages, streams, the neighbouring types; and ZoCLib.
#include <gtest/gtest.h>
#include <zo/host/char_formatter.h>
#include <zo/strings.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <vector>

#include "platform/ansi.h"
#include "support/printers.h"

namespace {

std::string toMB(const ZoString& s) { return std::unique_ptr<char[]>(s.getMBString()).get(); }

TEST(StringMultiByte, EscapesWhatTheCodePageCannotHoldAndReadsItBack) {
  // The tests run with code page 1252.
  struct Case {
    const wchar_t* text;
    const char* bytes;
  };
  for (const Case& c :
       std::vector<Case>{{L"", ""},
                         {L"plain", "plain"},
                         {L"\u00E4\u20AC", "\xE4\x80"},
                         {L"\u0100", "\\U+0100"},  // best fit would give A
                         {L"\uFF21", "\\U+FF21"},  // full-width A likewise
                         {L"a\u0430b", "a\\U+0430b"},
                         {L"\U0001F600", "\\U+D83D\\U+DE00"},  // a pair, unit by unit
                         {L"\xD83D", "\\U+D83D"},              // alone
                         {L"\xDE00x", "\\U+DE00x"}}) {
    EXPECT_EQ(toMB(c.text), c.bytes);
    EXPECT_EQ(ZoString().setFromMB(c.bytes), c.text) << c.bytes;
  }
  for (const char* literal :
       {"\\U+01", "\\U+012g", "\\U+00e4", "\\u+0100", "\\U-0100", "\\", "\\U+"}) {
    EXPECT_EQ(toMB(ZoString().setFromMB(literal)), literal) << "not an escape";
  }
  EXPECT_EQ(ZoString(L"x").setFromMB(nullptr), L"");
  EXPECT_EQ(ZoString().setFromMB("\\U+0000x"), L"") << "assigned as a zero-terminated text";
}

TEST(StringMultiByte, EveryCodeUnitComesBackFromTheCodePage) {
  ZoString all;
  all.capacity(0x10000);
  for (unsigned int c = 1; c < 0x10000; ++c) all.append(static_cast<wchar_t>(c));
  EXPECT_EQ(ZoString().setFromMB(toMB(all).c_str()), all);
}

TEST(StringMultiByte, AUtf8CodePageHoldsEverythingButLoneSurrogates) {
  EXPECT_TRUE(zo::fitsCodePage(L"\u0430", 65001));
  EXPECT_TRUE(zo::fitsCodePage(L"\U0001F600", 65001));
  EXPECT_FALSE(zo::fitsCodePage(L"\xD83D", 65001));
  EXPECT_FALSE(zo::fitsCodePage(L"\xDE00", 65001));
  EXPECT_EQ(zo::toMultiByte(L"\u00E4\U0001F600", 65001), "\xC3\xA4\xF0\x9F\x98\x80");
  EXPECT_EQ(zo::fromMultiByte("\xC3\xA4", 65001), L"\u00E4");
  EXPECT_TRUE(zo::fitsCodePage(L"\u3042", 932));
  EXPECT_FALSE(zo::fitsCodePage(L"\u0430", 1252));
}

TEST(StringStreams, ReadersStopWhereTheySayAndReplaceTheText) {
  using namespace zo::literals;
  std::wistringstream in(
      std::wstring((L"  token  rest of line\n\n  indented\nsemi;colon;zero\0tail\n x"_zs).view()));
  ZoString s(L"old");
  EXPECT_TRUE(in >> s);
  EXPECT_EQ(s, L"token");
  EXPECT_TRUE(s.readLine(in));
  EXPECT_EQ(s, L"rest of line");
  EXPECT_TRUE(s.readLine(in, false));
  EXPECT_EQ(s, L"") << "an empty line is a line";
  EXPECT_TRUE(s.readLine(in));
  EXPECT_EQ(s, L"indented");
  EXPECT_TRUE(s.readToDelim(in, L';'));
  EXPECT_EQ(s, L"semi");
  EXPECT_TRUE(s.readToken(in));
  EXPECT_EQ(s, L"colon;zero\0tail"_zs) << "a zero character is no white space";
  EXPECT_TRUE(s.readFile(in));
  EXPECT_EQ(s, L"\n x");
  EXPECT_TRUE(in.eof());
  EXPECT_FALSE(s.readLine(in));
  EXPECT_EQ(s, L"");

  std::wistringstream zeros(std::wstring(L"one\0two", 7));
  EXPECT_TRUE(s.readString(zeros));
  EXPECT_EQ(s, L"one");
  EXPECT_TRUE(s.readString(zeros));
  EXPECT_EQ(s, L"two") << "the end of the stream ends it too";
  std::wistringstream nothing;
  EXPECT_TRUE(s.readFile(nothing)) << "an empty rest is no failure";
  EXPECT_EQ(s, L"");
}

TEST(StringStreams, LongTextsAreReadWhole) {
  std::wstring line(100000, L'x');
  line[5000] = L'y';
  std::wistringstream in(line + L"\n" + line);
  ZoString s;
  s.readLine(in);
  EXPECT_EQ(s, line);
  s.readFile(in);
  EXPECT_EQ(s, line);
}

TEST(StringNeighbours, ViewsLiteralsStreamsAndRanges) {
  using namespace zo::literals;
  const ZoString s = L"a\0b"_zs;
  EXPECT_EQ(s.length(), 3u);
  const std::wstring_view view = s;
  EXPECT_EQ(view.size(), 3u);
  EXPECT_EQ(ZoString(view), s);
  EXPECT_EQ(s, view);
  EXPECT_EQ(std::count(s.begin(), s.end(), L'\0'), 1);
  std::wostringstream out;
  out << s << ZoString(L"cd")(1, 1);
  EXPECT_EQ(out.str(), std::wstring(L"a\0bd", 4));
  EXPECT_EQ(s + L"c" + s, L"a\0bca\0b"_zs);
  EXPECT_EQ(static_cast<const wchar_t*>(nullptr) + s, s);
  EXPECT_TRUE(ZoString(L"\x7F").isAscii());
  EXPECT_FALSE(ZoString(L"a\x80").isAscii());
  EXPECT_EQ(ZoString(L"abc").mbLength(), 3u);
  EXPECT_EQ(ZoString(L"b").collate(L"a") > 0, true);
}

TEST(CLib, ToleranceDecidesAtExactlyItsValueAndNotANumberIsSameButNotEqual) {
  struct Case {
    double a, b, tol;
    int order;
    bool equal;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const Case& c : std::vector<Case>{{1, 0.5, 0.5, 0, true},
                                         {1, 0.499, 0.5, 1, false},
                                         {0.499, 1, 0.5, -1, false},
                                         {0.5, 1, 0.5, 0, true},
                                         {nan, 1, 0.5, 0, false},
                                         {HUGE_VAL, HUGE_VAL, 0.5, 0, false},
                                         {0, 0, -1, 1, false}}) {
    EXPECT_EQ(ZoCLib::compare(c.a, c.b, c.tol), c.order);
    EXPECT_EQ(ZoCLib::isEqual(c.a, c.b, c.tol), c.equal);
    if (c.tol >= 0) {
      EXPECT_EQ(ZoCLib::isGreater(c.a, c.b, c.tol), c.order > 0);
      EXPECT_EQ(ZoCLib::isSmaller(c.a, c.b, c.tol), c.order < 0);
    }
  }
}

TEST(CLib, BoundedFunctionsNeverWritePastTheEndAndLeaveATerminatedText) {
  wchar_t buffer[6] = L"abc";
  EXPECT_EQ(ZoCLib::Zo_strcat_s(buffer, 6, L"de"), 0);
  EXPECT_STREQ(buffer, L"abcde");
  EXPECT_NE(ZoCLib::Zo_strcat_s(buffer, 6, L"f"), 0);
  EXPECT_STREQ(buffer, L"");
  EXPECT_EQ(ZoCLib::Zo_strncpy_s(buffer, 6, L"abcdefgh", 5), 0);
  EXPECT_EQ(ZoCLib::Zo_strncat_s(buffer, 5, L"x", 0), ERANGE) << "not terminated within the size";
  EXPECT_NE(ZoCLib::Zo_strcpy_s(buffer, 6, L"abcdef"), 0);
  EXPECT_NE(ZoCLib::Zo_strcpy_s(buffer, 6, nullptr), 0);
  EXPECT_NE(ZoCLib::Zo_strcpy_s(nullptr, 6, L"a"), 0);
  EXPECT_EQ(ZoCLib::Zo_sprintf(buffer, 6, L"%d-%ls", 12, L"ab"), 5);
  EXPECT_STREQ(buffer, L"12-ab");
  EXPECT_EQ(ZoCLib::Zo_sprintf(buffer, 6, L"%d", 1234567), -1);
  EXPECT_LT(ZoCLib::strlen(buffer), 6u);
  wchar_t path[32];
  EXPECT_EQ(ZoCLib::Zo_makepath(path, 32, L"c", L"dir", L"name", L"txt"), 0);
  EXPECT_STREQ(path, L"c:dir\\name.txt");
  wchar_t extension[256];
  ZoCLib::splitpath(path, nullptr, nullptr, nullptr, extension);
  EXPECT_STREQ(extension, L".txt");
}

}  // namespace
