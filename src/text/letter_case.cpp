#include "text/letter_case.h"

#include <windows.h>

#include <array>
#include <cstddef>

namespace zo {
namespace {

using Table = std::array<wchar_t, 0x10000>;

// Every unit there is, asked for once.
struct LowerTable {
  Table lower;
  LowerTable() noexcept {
    static Table units;
    for (unsigned int i = 0; i < units.size(); ++i) units[i] = static_cast<wchar_t>(i);
    const int size = static_cast<int>(units.size());
    const int mapped =
        LCMapStringW(LOCALE_INVARIANT, LCMAP_LOWERCASE, units.data(), size, lower.data(), size);
    if (mapped != size) lower = units;  // without the platform's help each unit is its own form
  }
};

// Units whose folding the platform's invariant casing does not reach.
constexpr wchar_t kFurther[][2] = {
    {0x00B5, 0x039C}, {0x017F, 0x0053}, {0x01C5, 0x01C4}, {0x01C8, 0x01C7}, {0x01CB, 0x01CA},
    {0x01F2, 0x01F1}, {0x0345, 0x0399}, {0x03C2, 0x03A3}, {0x03D0, 0x0392}, {0x03D1, 0x0398},
    {0x03D5, 0x03A6}, {0x03D6, 0x03A0}, {0x03F0, 0x039A}, {0x03F1, 0x03A1}, {0x03F4, 0x0398},
    {0x03F5, 0x0395}, {0x1C80, 0x0412}, {0x1C81, 0x0414}, {0x1C82, 0x041E}, {0x1C83, 0x0421},
    {0x1C84, 0x0422}, {0x1C85, 0x0422}, {0x1C86, 0x042A}, {0x1C87, 0x0462}, {0x1C88, 0xA64A},
    {0x1E9B, 0x1E60}, {0x1E9E, 0x00DF}, {0x1FBE, 0x0399}, {0x2126, 0x03A9}, {0x212A, 0x004B},
    {0x212B, 0x00C5}};

struct FoldTable {
  Table units;
  FoldTable() noexcept {
    for (std::size_t c = 0; c < units.size(); ++c) {
      const auto unit = static_cast<wchar_t>(c);
      wchar_t upper[2];
      const int length = LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, &unit, 1, upper, 2);
      units[c] = length == 1 ? upper[0] : unit;
    }
    for (const auto& [unit, folded] : kFurther) units[unit] = folded;
  }
};

}  // namespace

wchar_t lowerByPlatform(wchar_t c) noexcept {
  static const LowerTable table;
  return table.lower[c];
}

const wchar_t* foldTable() noexcept {
  static const FoldTable table;
  return table.units.data();
}

}  // namespace zo
