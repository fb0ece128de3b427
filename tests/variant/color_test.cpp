#include <gtest/gtest.h>
#include <zo/variant/color.h>

#include <iomanip>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include "support/printers.h"

namespace {

ZoColor palette(unsigned int number) { return static_cast<ZoColor::Type>(number); }

static_assert(ZoColor().value() == 0x07000000 && ZoColor().type() == 7 && ZoColor().rgb() == 0);
static_assert(ZoColor(0x123456).value() == 0x66123456);
static_assert(ZoColor(ZoColor::kTrueColor) == ZoColor());
static_assert(!std::is_convertible_v<unsigned int, ZoColor>);

TEST(Color, PaletteColoursLookAsTheTableSays) {
  std::map<unsigned int, unsigned int> table = {{1, 0xFF0000},  // as 5, on purpose
                                                {2, 0x00FFFF}, {3, 0x00FF00},   {4, 0xFFFF00},
                                                {5, 0xFF0000}, {6, 0xFF00FF},   {8, 0x7F7F7F},
                                                {9, 0xBFBFBF}, {251, 0x3F3F3F}, {255, 0xFFFFFF}};
  for (unsigned int t = 0; t < 256; ++t) {
    if (t == 102) continue;
    EXPECT_EQ(palette(t).value(), t << 24);
    EXPECT_EQ(palette(t).rgb(), table[t]) << t;
  }
}

TEST(Color, TrueColourKeepsItsPartsAndATypeInTheWordIsCombinedByOr) {
  ZoColor c(255, 0, 0);
  EXPECT_EQ(c.value(), 0x660000FFu);
  EXPECT_EQ(c.setRgb(0x12, 0x34, 0x56), 0);
  EXPECT_EQ(c.value(), 0x66563412u);
  unsigned char r = 0, g = 0, b = 0;
  EXPECT_EQ(c.getRgb(r, g, b), 0);
  EXPECT_EQ(ZoColor(r, g, b), c);
  EXPECT_EQ(c.setType(ZoColor::kTrueColor), 1);
  EXPECT_EQ((c = ZoColor::kTrueColor), ZoColor(0x12, 0x34, 0x56)) << "no colour of the palette";
  EXPECT_EQ(c.setRgb(0x01ABCDEF), 0);
  EXPECT_EQ(c.value(), 0x67ABCDEFu);
  EXPECT_EQ(c.rgb(), 0u);
  EXPECT_EQ((c = ZoColor::kGreen).value(), 0x03000000u);
}

TEST(Color, OrderIsThatOfTheWords) {
  const ZoColor ascending[] = {ZoColor::kNone,     ZoColor::kRed,    ZoColor::kForeground,
                               ZoColor(255, 0, 0), ZoColor(0, 1, 0), ZoColor(255, 255, 0),
                               ZoColor(0, 0, 1),   palette(103),     ZoColor::kWhite};
  for (const ZoColor& a : ascending) {
    for (const ZoColor& b : ascending) {
      EXPECT_EQ(a <=> b, &a <=> &b);
      EXPECT_EQ(std::hash<ZoColor>()(a) == std::hash<ZoColor>()(b), &a == &b);
    }
  }
}

TEST(Color, TextFormsAreReadInEitherCaseAndWrittenInOne) {
  struct {
    const wchar_t* text;
    unsigned int value;
    const wchar_t* written;
  } const table[] = {
      {L"#102030", 0x66302010, L"#102030"},
      {L"#abCDef", 0x66EFCDAB, L"#ABCDEF"},
      {L"none", 0, L"none"},
      {L"Red", 0x01000000, L"red"},
      {L"YELLOW", 0x02000000, L"yellow"},
      {L"green", 0x03000000, L"green"},
      {L"cyan", 0x04000000, L"cyan"},
      {L"blue", 0x05000000, L"blue"},
      {L"magenta", 0x06000000, L"magenta"},
      {L"foreground", 0x07000000, L"foreground"},
      {L"Grey", 0x08000000, L"gray"},
      {L"lightGray", 0x09000000, L"lightgray"},
      {L"lightgrey", 0x09000000, L"lightgray"},
      {L"darkgrey", 0xFB000000, L"darkgray"},
      {L"white", 0xFF000000, L"white"},
      {L"5", 0x05000000, L"blue"},
      {L"42", 0x2A000000, L"42"},
      {L"0x67000005", 0x67000005, L"0x67000005"},
      {L"0X05000000", 0x05000000, L"blue"},
  };
  for (const auto& [text, value, written] : table) {
    ZoColor c;
    EXPECT_EQ(c.fromString(text), 0) << value;
    EXPECT_EQ(c.value(), value);
    EXPECT_EQ(c.toString(), written);
    std::ostringstream narrow;
    narrow << std::setw(12) << c;
    std::wostringstream wide;
    wide << std::setw(12) << c;
    const std::wstring padded = std::wstring(12 - std::wcslen(written), L' ') + written;
    EXPECT_EQ(wide.str(), padded);
    EXPECT_EQ(narrow.str(), std::string(padded.begin(), padded.end()));
  }
  std::mt19937 random(7);
  for (unsigned int i = 0; i < 2000; ++i) {  // palette colours first
    const unsigned int word = i < 256 ? i << 24 : static_cast<unsigned int>(random());
    ZoColor c, back(9, 9, 9);
    c.value() = word;
    EXPECT_EQ(back.fromString(c.toString().view()), 0);
    EXPECT_EQ(back, c) << c;
  }
}

TEST(Color, OtherTextsAreRefusedAndLeaveTheColour) {
  using namespace std::string_view_literals;
  for (const std::wstring_view text :
       {L""sv,          L"#"sv,           L"#12345"sv,
        L"#1234567"sv,  L"#12345G"sv,     L"#-12345"sv,
        L"102"sv,       L"256"sv,         L"0255"sv,
        L"1000"sv,      L"-1"sv,          L"+1"sv,
        L"1 "sv,        L" red"sv,        L"red\0"sv,
        L"re"sv,        L"redd"sv,        L"0x"sv,
        L"0x123"sv,     L"0x123456789"sv, L"0x1234567G"sv,
        L"truecolor"sv, L"\x0661"sv,      L"gr\x0117y"sv,
        L"F"sv,         L"\xFF11"sv,      L"\x0172\x0165\x0164"sv}) {  // low bytes spell "red"
    ZoColor c(1, 2, 3);
    EXPECT_EQ(c.fromString(text), 1) << ZoString(text).length();
    EXPECT_EQ(c, ZoColor(1, 2, 3));
  }
}

}  // namespace
