#include "text/case_fold.h"

#include <windows.h>

#include <array>

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

}  // namespace

wchar_t lowerByPlatform(wchar_t c) noexcept {
  static const LowerTable table;
  return table.lower[c];
}

}  // namespace zo
