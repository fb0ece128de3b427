#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system/codepage.h>

#include <string>
#include <utility>
#include <vector>

#include "support/printers.h"

namespace {

using Page = ZoCodepage;

struct Bytes {
  int result;
  std::string bytes;
  bool operator==(const Bytes&) const = default;
};
Bytes toBytes(std::wstring_view text, unsigned int codepage, Page::Unfit unfit) {
  Bytes out{0, "untouched"};
  out.result = ZoStdCodepage().toBytes(text, codepage, unfit, out.bytes);
  return out;
}
struct Text {
  int result;
  std::wstring text;
  bool operator==(const Text&) const = default;
};
Text toText(std::string_view bytes, unsigned int codepage, Page::Unfit unfit) {
  ZoString text(L"untouched");
  const int result = ZoStdCodepage().toText(bytes, codepage, unfit, text);
  return {result, std::wstring(text.view())};
}

// Bytes from the code pages' published tables.
TEST(Codepage, TextsConvertBothWaysWhereTheCodePageHoldsThem) {
  const struct {
    unsigned int codepage;
    std::wstring text;
    std::string bytes;
  } rows[] = {{1252, L"\u00E4\u20AC", "\xE4\x80"},
              {850, L"\u00E4", "\x84"},
              {932, L"\u30C6", "\x83\x65"},
              {Page::kUtf8, L"a\u20AC\xD83D\xDE00", "a\xE2\x82\xAC\xF0\x9F\x98\x80"},
              {Page::kUtf16, L"a\u20AC\xD800", std::string("a\0\xAC\x20\0\xD8", 6)},
              {Page::kUtf16BigEndian, L"a\u20AC", std::string("\0a\x20\xAC", 4)},
              {1252, L"", ""},
              {Page::kUtf8, std::wstring(L"a\0b", 3), std::string("a\0b", 3)}};
  for (const auto& [codepage, text, bytes] : rows) {
    SCOPED_TRACE(codepage);
    for (const Page::Unfit unfit : {Page::kRefuse, Page::kReplace, Page::kEscape}) {
      EXPECT_EQ(toBytes(text, codepage, unfit), (Bytes{0, bytes}));
      EXPECT_EQ(toText(bytes, codepage, unfit), (Text{0, text}));
    }
  }
}

TEST(Codepage, WhatItCannotHoldIsRefusedReplacedOrEscaped) {
  const Bytes refusedBytes{ZoResult::refused, "untouched"};
  const Text refusedText{ZoResult::refused, L"untouched"};
  EXPECT_EQ(toBytes(L"a\u044F", 1252, Page::kRefuse), refusedBytes);
  EXPECT_EQ(toBytes(L"a\u044F", 1252, Page::kReplace), (Bytes{0, "a?"}));
  EXPECT_EQ(toBytes(L"a\u044F", 1252, Page::kEscape), (Bytes{0, "a\\U+044F"}));
  // A similar character is a replacement, not the character.
  EXPECT_EQ(toBytes(L"\u0100", 1252, Page::kRefuse), refusedBytes);
  EXPECT_EQ(toBytes(L"\u0100", 1252, Page::kReplace), (Bytes{0, "A"}));
  EXPECT_EQ(toBytes(L"\xD800", Page::kUtf8, Page::kRefuse), refusedBytes);
  EXPECT_EQ(toText("a\\U+044F", 1252, Page::kRefuse), (Text{0, L"a\\U+044F"}));
  EXPECT_EQ(toText("\\U+D83D\\U+DE00", 1252, Page::kEscape), (Text{0, L"\xD83D\xDE00"}));
  EXPECT_EQ(toText("\xC0\x80", Page::kUtf8, Page::kRefuse), refusedText);
  EXPECT_EQ(toText("\xC3", Page::kUtf8, Page::kReplace), (Text{0, L"\uFFFD"}));
  EXPECT_EQ(toText("abc", Page::kUtf16, Page::kReplace), (Text{0, L"\u6261\uFFFD"}));
  for (const unsigned int codepage : {1u, 42u, 99999u})
    EXPECT_EQ(toText("a", codepage, Page::kReplace), refusedText);
}

TEST(Codepage, NamesLeadToCodePagesAndBack) {
  const std::pair<const wchar_t*, unsigned int> rows[] = {{L"windows-1252", 1252},
                                                          {L"UTF 8", 65001},
                                                          {L"Latin1", 28591},
                                                          {L"ANSI_1252", 1252},
                                                          {L"DOS850", 850},
                                                          {L"cp_437", 437},
                                                          {L"oem852", 852},
                                                          {L"1201", 1201},
                                                          {L"unicode", 1200},
                                                          {L"Shift-JIS", 932},
                                                          {L"", 0},
                                                          {L"cp", 0},
                                                          {L"0", 0},
                                                          {L"windows", 0},
                                                          {L"1252x", 0},
                                                          {L"-1252", 1252},
                                                          {L"65537", 0},
                                                          {L"99999999999", 0},
                                                          {L"cp1.252", 0},
                                                          {nullptr, 0}};
  ZoStdCodepage service;
  for (const auto& [name, wanted] : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(name ? name : L"null")));
    unsigned int found = 0;
    EXPECT_EQ(service.find(name, found), wanted ? 0 : ZoResult::refused);
    EXPECT_EQ(found, wanted);
  }
  for (const unsigned int codepage :
       {0u,     1u,     37u,    42u,    437u,   858u,   874u,   932u,
        936u,   949u,   950u,   1200u,  1201u,  1252u,  1361u,  10000u,
        20127u, 20866u, 28591u, 28605u, 54936u, 65000u, 65001u, 65536u}) {
    ZoString name(L"untouched"), description;
    unsigned int found = 0;
    if (!service.isValid(codepage) && codepage != 0) {
      EXPECT_EQ(service.nameOf(codepage, name), ZoResult::refused) << codepage;
      EXPECT_EQ(name, L"untouched");
      EXPECT_EQ(service.describe(codepage, description), ZoResult::refused) << codepage;
    } else {
      EXPECT_EQ(service.nameOf(codepage, name), 0) << codepage;
      EXPECT_EQ(service.find(name, found), 0);
      EXPECT_EQ(found, codepage ? codepage : service.ansi());
    }
  }
}

TEST(Codepage, DetectsWhatTheFormTells) {
  const struct {
    unsigned int codepage, mark;
    Page::Certainty certainty;
    std::vector<std::string> texts;
  } rows[] = {
      {Page::kUtf8, 3, Page::kMarked, {"\xEF\xBB\xBFx", "\xEF\xBB\xBF\xFF"}},
      {Page::kUtf16, 2, Page::kMarked, {std::string("\xFF\xFEx\0", 4)}},
      {Page::kUtf16BigEndian, 2, Page::kMarked, {std::string("\xFE\xFF\0x", 4)}},
      {Page::kUtf8, 0, Page::kLikely, {"gr\xC3\xBC\xC3\x9F", "\xF0\x9F\x98\x80 and \xC3"}},
      {Page::kUtf8, 0, Page::kLikely, {"\xEF\xBB"}},  // a text cut off
      {Page::kUtf16, 0, Page::kLikely, {std::string("t\0e\0x\0t\0", 8)}},
      {Page::kUtf16BigEndian, 0, Page::kLikely, {std::string("\0t\0e\0x\0t", 8)}},
      {1250, 0, Page::kAssumed, {"", "plain", "\xE4 8-bit", "\xC3 cut", "\x80"}},
      {1250, 0, Page::kAssumed, {"\xC0\x80", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF"}},  // overlong
      {1250, 0, Page::kAssumed, {std::string("\0t\0\0x\0\0y", 8)}},                 // not text
  };
  ZoStdCodepage service;
  ASSERT_EQ(service.setDefault(1250), 0);
  for (const auto& row : rows) {
    for (const std::string& bytes : row.texts) {
      SCOPED_TRACE(testing::PrintToString(bytes));
      const std::vector<char> exact(bytes.begin(), bytes.end());
      unsigned int codepage = 0, mark = 99;
      Page::Certainty certainty{};
      EXPECT_EQ(service.detect({exact.data(), exact.size()}, codepage, mark, certainty), 0);
      EXPECT_TRUE(codepage == row.codepage && mark == row.mark) << codepage << ' ' << mark;
      EXPECT_EQ(certainty, row.certainty);
    }
  }
}

}  // namespace
