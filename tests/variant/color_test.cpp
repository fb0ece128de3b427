// Colours: the palette, the word of a true colour, and their text forms.
#include <gtest/gtest.h>
#include <zo/variant/color.h>

#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/printers.h"

namespace {

ZoColor colorOf(unsigned int word) {
  ZoColor c;
  c.value() = word;
  return c;
}

TEST(Color, PaletteColoursLookAndReadAsTheTableSays) {
  const std::map<unsigned int, std::pair<std::wstring, unsigned int>> table = {
      {0, {L"none", 0}},          {1, {L"red", 0xFF0000}},  // as 5, on purpose
      {2, {L"yellow", 0x00FFFF}}, {3, {L"green", 0x00FF00}},     {4, {L"cyan", 0xFFFF00}},
      {5, {L"blue", 0xFF0000}},   {6, {L"magenta", 0xFF00FF}},   {7, {L"foreground", 0}},
      {8, {L"gray", 0x7F7F7F}},   {9, {L"lightgray", 0xBFBFBF}}, {251, {L"darkgray", 0x3F3F3F}},
      {255, {L"white", 0xFFFFFF}}};
  for (unsigned int t = 0; t < 256; ++t) {
    if (t == 102) continue;  // a true colour
    const auto named = table.find(t);
    const ZoColor c = colorOf(t << 24);
    EXPECT_EQ(c.rgb(), named == table.end() ? 0 : named->second.second) << t;
    EXPECT_EQ(c.toString(), named == table.end() ? std::to_wstring(t) : named->second.first);
  }
}

TEST(Color, ATypeInTheWordIsCombinedByOr) {
  ZoColor c(0x12, 0x34, 0x56);
  EXPECT_EQ(c.value(), 0x66563412u);
  EXPECT_EQ((c = ZoColor::kTrueColor), ZoColor(0x12, 0x34, 0x56)) << "no colour of the palette";
  EXPECT_EQ(c.setRgb(0x01ABCDEF), 0);
  EXPECT_EQ(c.value(), 0x67ABCDEFu);
}

TEST(Color, TextFormsAreReadInEitherCaseAndOthersLeaveTheColour) {
  using namespace std::string_view_literals;
  for (const auto& [text, value] :
       std::vector<std::pair<const wchar_t*, unsigned int>>{{L"#abCDef", 0x66EFCDAB},
                                                            {L"Red", 0x01000000},
                                                            {L"lightGrey", 0x09000000},
                                                            {L"42", 0x2A000000},
                                                            {L"0X67000005", 0x67000005}}) {
    ZoColor c;
    EXPECT_EQ(c.fromString(text), 0) << value;
    EXPECT_EQ(c.value(), value);
  }
  std::mt19937 random(7);
  for (unsigned int i = 0; i < 2000; ++i) {  // palette colours first
    const ZoColor c = colorOf(i < 256 ? i << 24 : static_cast<unsigned int>(random()));
    ZoColor back(9, 9, 9);
    EXPECT_EQ(back.fromString(c.toString().view()), 0);
    EXPECT_EQ(back, c) << c;
  }
  for (const std::wstring_view text :
       {L""sv, L"#12345"sv, L"#1234567"sv, L"#-12345"sv, L"102"sv, L"256"sv, L"0255"sv, L"1 "sv,
        L"red\0"sv, L"0x123"sv, L"0x123456789"sv, L"\xFF11"sv, L"\x0172\x0165\x0164"sv}) {
    ZoColor c(1, 2, 3);
    EXPECT_EQ(c.fromString(text), 1) << ZoString(text).length();
    EXPECT_EQ(c, ZoColor(1, 2, 3));
  }
}

}  // namespace
