// What printing and reading share: a format that has been checked, with its unit.
#pragma once

#include <zo/system/unit_text.h>

#include "system/units/unit_table.h"

namespace zo {

inline constexpr const wchar_t* kDegree = L"\u00B0";
inline constexpr const wchar_t* kMinute = L"'";
inline constexpr const wchar_t* kSecond = L"\"";
inline constexpr const wchar_t* kInch = L"\"";
inline constexpr const wchar_t* kFoot = L"'";

[[nodiscard]] inline bool isLength(ZoTypeCode code) noexcept {
  return code == ZoTypeCode::Length || code == ZoTypeCode::XDistance;
}

struct ResolvedFormat {
  const Quantity* quantity = nullptr;
  NamedUnit unit;  // of Decimal and Fraction, and of a number that is read without one
};
// False when the code is not physical, or the format is none, or not for this code.
[[nodiscard]] bool resolve(ZoTypeCode code, const ZoUnitFormat& format,
                           ResolvedFormat& resolved) noexcept;

}  // namespace zo
