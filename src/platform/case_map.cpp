#include "platform/case_map.h"

#include <windows.h>

#include <memory>

namespace zo {
namespace {

constexpr size_t kUnits = 0x10000;

std::unique_ptr<wchar_t[]> upperTable() {
  auto table = std::make_unique<wchar_t[]>(kUnits);
  for (size_t c = 0; c < kUnits; ++c) {
    const auto unit = static_cast<wchar_t>(c);
    wchar_t upper[2];
    const int length = LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, &unit, 1, upper, 2);
    table[c] = length == 1 ? upper[0] : unit;
  }
  return table;
}

}  // namespace

wchar_t upperUnit(wchar_t c) {
  static const std::unique_ptr<wchar_t[]> table = upperTable();
  return table[c];
}

}  // namespace zo
