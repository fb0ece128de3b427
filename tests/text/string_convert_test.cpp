// Text on its way in and out: code pages, UTF-8, streams, texts of other libraries.
#include <gtest/gtest.h>
#include <zo/strings.h>
#include <zo/text/char_formatter.h>

#include <filesystem>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "platform/ansi.h"
#include "support/printers.h"

namespace {

std::string toMB(const ZoString& s) { return std::unique_ptr<char[]>(s.getMBString()).get(); }

TEST(StringMultiByte, EscapesWhatTheCodePageCannotHoldAndReadsItBack) {
  // The tests run with code page 1252.
  for (const auto& [text, bytes] : std::vector<std::pair<const wchar_t*, const char*>>{
           {L"", ""},
           {L"\u00E4\u20AC", "\xE4\x80"},
           {L"\u0100", "\\U+0100"},  // best fit would give A
           {L"\uFF21", "\\U+FF21"},  // full-width A likewise
           {L"a\u0430b", "a\\U+0430b"},
           {L"\U0001F600", "\\U+D83D\\U+DE00"},  // a pair, unit by unit
           {L"\xDE00x", "\\U+DE00x"}}) {         // alone
    EXPECT_EQ(toMB(text), bytes);
    EXPECT_EQ(ZoString().setFromMB(bytes), text) << bytes;
  }
  for (const char* literal :
       {"\\U+01", "\\U+012g", "\\U+00e4", "\\u+0100", "\\U-0100", "\\", "\\U+"}) {
    EXPECT_EQ(toMB(ZoString().setFromMB(literal)), literal) << "not an escape";
  }
  ZoString all;
  for (unsigned int c = 1; c < 0x10000; ++c) all.append(static_cast<wchar_t>(c));
  EXPECT_EQ(ZoString().setFromMB(toMB(all).c_str()), all);
  using namespace zo::literals;
  EXPECT_EQ(ZoString().setFromMB("a\\U+0000b"), L"a\0b"_zs) << "a zero does not cut the text";
}

TEST(StringMultiByte, AUtf8CodePageHoldsEverythingButLoneSurrogates) {
  EXPECT_TRUE(zo::fitsCodePage(L"\u0430\U0001F600", 65001));
  EXPECT_FALSE(zo::fitsCodePage(L"\xD83D", 65001));
  EXPECT_EQ(zo::toMultiByte(L"\u00E4\U0001F600", 65001), "\xC3\xA4\xF0\x9F\x98\x80");
}

TEST(StringUtf8, AgreesWithThePlatformOnEveryCharacter) {
  std::wstring all;
  for (unsigned int c = 0; c < 0x10000; ++c) {
    if (c < 0xD800 || c > 0xDFFF) all += static_cast<wchar_t>(c);
  }
  for (unsigned int c = 0; c < 0x400 * 0x400; c += 0x155) {
    all += static_cast<wchar_t>(0xD800 + c / 0x400);
    all += static_cast<wchar_t>(0xDC00 + c % 0x400);
  }
  const std::string bytes = zo::toMultiByte(all, 65001);
  EXPECT_EQ(ZoString(all).toUtf8(), bytes);
  EXPECT_EQ(ZoString::fromUtf8(bytes), all);
}

TEST(StringUtf8, WhatIsNoTextBecomesReplacementCharacters) {
  struct Case {
    std::string bytes;
    const wchar_t* text;
  };
  for (const Case& c : std::vector<Case>{
           {"\xC0\x80\xC1\xBF", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // could be written shorter
           {"\xE0\x9F\xBF|\xF0\x8F\xBF\xBF", L"\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD\uFFFD"},
           {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // a surrogate
           {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // past the last character
           {"\xF5\xFF\x80", L"\uFFFD\uFFFD\uFFFD"},
           {"a\xF1\x80\x80\xE1\x80\xC2"
            "b\x80"
            "c\x80\xBF"
            "d",
            L"a\uFFFD\uFFFD\uFFFD"
            L"b\uFFFD"
            L"c\uFFFD\uFFFD"
            L"d"},
           {"x\xE2\x82", L"x\uFFFD"},  // cut at the end
           {"\xF0\x9F\x98", L"\uFFFD"}}) {
    EXPECT_EQ(ZoString::fromUtf8(c.bytes), c.text) << testing::PrintToString(c.bytes);
  }
  for (const auto& [text, bytes] : std::vector<std::pair<std::wstring, std::string>>{
           {L"\xD83D", "\xEF\xBF\xBD"},
           {L"\xDE00\xD83D!", "\xEF\xBF\xBD\xEF\xBF\xBD!"},
           {L"\xD83D\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
           {std::wstring(L"a\0b", 3), std::string("a\0b", 3)}})
    EXPECT_EQ(ZoString(text).toUtf8(), bytes);
  EXPECT_EQ(ZoString::fromUtf8(static_cast<const char*>(nullptr)), L"");
  EXPECT_EQ(ZoString::fromUtf8(u8"\u00E4\U0001F600"), L"\u00E4\U0001F600");

  std::mt19937 random(
      12);  // whatever the bytes are, the text that comes of them goes out and comes back
  for (int round = 0; round < 2000; ++round) {
    std::string bytes(random() % 12, ' ');
    for (char& c : bytes) c = static_cast<char>(random() % 2 ? 0x80 + random() % 0x80 : random());
    const ZoString text = ZoString::fromUtf8(bytes);
    ASSERT_EQ(ZoString::fromUtf8(text.toUtf8()), text) << testing::PrintToString(bytes);
  }
}

// Each member that takes a pointer takes the texts of other libraries and single characters, too.
template <class Text>
void expectTakenEverywhere(const Text& b, const std::wstring& text) {
  const ZoString a(L"a"), made(b), longer = ZoString(text).append(L"--").append(text);
  ZoString s;
  EXPECT_EQ((s = b), text);
  EXPECT_TRUE(s == b && b == s && (s <=> b) == 0 && s.compareTo(b) == 0 && s.equals(b) &&
              s.collate(b) == 0);
  EXPECT_EQ(made, text);
  EXPECT_EQ(a + b, L"a" + text);
  EXPECT_EQ(b + a, text + L"a");
  EXPECT_EQ(a.left(1) + b, L"a" + text);
  EXPECT_EQ(s += b, text + text);
  EXPECT_EQ(ZoString(a).append(b).prepend(b).insert(0, b), text + text + L"a" + text);
  EXPECT_EQ(ZoString(a).replace(0, 1, b), text);
  EXPECT_EQ(ZoString(a).replaceAll(L"a", b).replaceAll(b, a), a);
  s = a;
  s.left(1) = b;
  EXPECT_TRUE(s == b && s.left(ZoString::npos) == b);
  EXPECT_EQ(longer.index(b, 1), text.size() + 2);
  EXPECT_EQ(longer.index(b, ZoString::ignoreCase), 0u);
  EXPECT_EQ(longer.indexBack(b), text.size() + 2);
  EXPECT_EQ(longer.indexBack(b, ZoString::ignoreCase), text.size() + 2);
  EXPECT_EQ(longer.subString(b, 1).start(), text.size() + 2);
  EXPECT_EQ(longer.subString(b, ZoString::ignoreCase), text);
  EXPECT_TRUE(longer.contains(b) && longer.startsWith(b) && longer.endsWith(b) && !a.contains(b));
  EXPECT_EQ(a.splitNext(b), ZoString::npos);
  EXPECT_EQ(longer.stripped(ZoString::both, b), L"--");
  EXPECT_EQ(ZoString(longer).strip(ZoString::leading, b), L"--" + text);
  EXPECT_EQ(ZoString::join({b, b, b}, b), text + text + text + text + text);
}

TEST(StringOtherTexts, AreTakenWhereverAPointerIs) {
  expectTakenEverywhere(std::wstring(L"x\0y", 3), std::wstring(L"x\0y", 3));
  expectTakenEverywhere(std::wstring_view(L"xyz", 2), L"xy");
  expectTakenEverywhere(std::filesystem::path(L"c:\\x"), L"c:\\x");
  expectTakenEverywhere(L'x', L"x");
  expectTakenEverywhere(L'\0', std::wstring(1, L'\0'));
  const ZoString s(L"c:\\x");
  EXPECT_EQ(s.to<std::wstring>(), L"c:\\x");
  EXPECT_EQ(s.to<std::filesystem::path>(), std::filesystem::path(L"c:\\x"));
  ZoString self(L"ab");
  EXPECT_EQ((self += self[1]).append(self[0], 2).insert(1, L'-', 2), L"a--bbaa")
      << "a character of its own";
  EXPECT_EQ(ZoString(nullptr) + nullptr, L"");
  EXPECT_EQ(self = nullptr, L"");
  EXPECT_TRUE(s.equals(s.left(9)) && !s.equals(static_cast<const wchar_t*>(nullptr)));
}

TEST(StringStreams, ReadersStopWhereTheySayAndReplaceTheText) {
  using namespace zo::literals;
  std::wistringstream in(
      std::wstring((L"  token  rest of line\n\n  indented\nsemi;colon;zero\0tail\n x"_zs).view()));
  ZoString s(L"old");
  EXPECT_TRUE(in >> s && s == L"token");
  EXPECT_TRUE(s.readLine(in) && s == L"rest of line");
  EXPECT_TRUE(s.readLine(in, false) && s.isEmpty()) << "an empty line is a line";
  EXPECT_TRUE(s.readLine(in) && s == L"indented");
  EXPECT_TRUE(s.readToDelim(in, L';') && s == L"semi");
  EXPECT_TRUE(s.readToken(in) && s == L"colon;zero\0tail"_zs) << "a zero is no white space";
  EXPECT_TRUE(s.readFile(in) && s == L"\n x");
  EXPECT_TRUE(in.eof());
  std::wistringstream zeros(std::wstring(L"one\0two", 7));
  EXPECT_TRUE(s.readString(zeros) && s == L"one");
  EXPECT_TRUE(s.readString(zeros) && s == L"two") << "the end of the stream ends it too";
}

}  // namespace
