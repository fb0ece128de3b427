// Text on its way in and out: code pages, streams, the neighbouring types.
#include <gtest/gtest.h>
#include <zo/host/char_formatter.h>
#include <zo/strings.h>

#include <memory>
#include <sstream>
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
}

TEST(StringMultiByte, AUtf8CodePageHoldsEverythingButLoneSurrogates) {
  EXPECT_TRUE(zo::fitsCodePage(L"\u0430\U0001F600", 65001));
  EXPECT_FALSE(zo::fitsCodePage(L"\xD83D", 65001));
  EXPECT_EQ(zo::toMultiByte(L"\u00E4\U0001F600", 65001), "\xC3\xA4\xF0\x9F\x98\x80");
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
