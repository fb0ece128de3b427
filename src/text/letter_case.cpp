#include "text/letter_case.h"

#include <windows.h>

#include <array>
#include <cstddef>

namespace zo {
namespace {

using Table = std::array<wchar_t, 0x10000>;

// Every unit there is, mapped by one call. Without the platform's help each is its own form.
Table mapped(DWORD how) noexcept {
  Table units;
  for (unsigned int i = 0; i < units.size(); ++i) units[i] = static_cast<wchar_t>(i);
  const int size = static_cast<int>(units.size());
  (void)LCMapStringW(LOCALE_INVARIANT, how, units.data(), size, units.data(), size);
  return units;
}

// Units whose folding the platform's invariant casing does not reach.
constexpr wchar_t kFurther[][2] = {
    {0x00B5, 0x039C}, {0x017F, 0x0053}, {0x01C5, 0x01C4}, {0x01C8, 0x01C7}, {0x01CB, 0x01CA},
    {0x01F2, 0x01F1}, {0x0345, 0x0399}, {0x03C2, 0x03A3}, {0x03D0, 0x0392}, {0x03D1, 0x0398},
    {0x03D5, 0x03A6}, {0x03D6, 0x03A0}, {0x03F0, 0x039A}, {0x03F1, 0x03A1}, {0x03F4, 0x0398},
    {0x03F5, 0x0395}, {0x1C80, 0x0412}, {0x1C81, 0x0414}, {0x1C82, 0x041E}, {0x1C83, 0x0421},
    {0x1C84, 0x0422}, {0x1C85, 0x0422}, {0x1C86, 0x042A}, {0x1C87, 0x0462}, {0x1C88, 0xA64A},
    {0x1E9B, 0x1E60}, {0x1E9E, 0x00DF}, {0x1FBE, 0x0399}, {0x2126, 0x03A9}, {0x212A, 0x004B},
    {0x212B, 0x00C5}};

Table folding() noexcept {
  Table units = mapped(LCMAP_UPPERCASE);
  for (const auto& [unit, folded] : kFurther) units[unit] = folded;
  return units;
}

}  // namespace

wchar_t lowerByPlatform(wchar_t c) noexcept {
  static const Table lower = mapped(LCMAP_LOWERCASE);
  return lower[c];
}

const wchar_t* foldTable() noexcept {
  static const Table units = folding();
  return units.data();
}

}  // namespace zo
