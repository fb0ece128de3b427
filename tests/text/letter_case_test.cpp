// The tables of letter case against the platform, asked for each unit by itself.
#include "text/letter_case.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace {

wchar_t byItself(DWORD how, wchar_t unit) {
  wchar_t mapped[2];
  return LCMapStringW(LOCALE_INVARIANT, how, &unit, 1, mapped, 2) == 1 ? mapped[0] : unit;
}

TEST(LetterCase, EachUnitIsMappedAsByItself) {
  int further = 0;  // units that fold where the platform leaves them, or maps them elsewhere
  for (unsigned int c = 0; c < 0x10000; ++c) {
    const auto unit = static_cast<wchar_t>(c);
    ASSERT_EQ(zo::lowerCase(unit), byItself(LCMAP_LOWERCASE, unit)) << c;
    further += zo::foldTable()[c] != byItself(LCMAP_UPPERCASE, unit) ? 1 : 0;
  }
  EXPECT_LE(further, 31);
}

}  // namespace
