// The kinds of values: ZoVariant::Type for those who must not know ZoVariant, as what is fuzzed
// natively.
#pragma once

#include <zo/variant/type.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace zo {

// By their numbers in archives: never renumber.
enum class VariantKind : unsigned int {
  Empty,
  Int,
  BigInt,
  Real,
  String,
  Pointer,
  Point,
  Vector,
  Dict,
  Sequence,
  Guid
};

struct KindRow {
  std::wstring_view name;  // in text forms
  ZoTypeCode code;         // the base code that stands for the kind when no other is named
};
inline constexpr KindRow kKinds[] = {
    {L"Empty", ZoTypeCode::NoType},  {L"Int", ZoTypeCode::Int},
    {L"BigInt", ZoTypeCode::BigInt}, {L"Real", ZoTypeCode::Real},
    {L"String", ZoTypeCode::String}, {L"Pointer", ZoTypeCode::Pointer},
    {L"Point", ZoTypeCode::Point},   {L"Vector", ZoTypeCode::Vector},
    {L"Dict", ZoTypeCode::Dict},     {L"Sequence", ZoTypeCode::Sequence},
    {L"GUID", ZoTypeCode::Guid},
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(VariantKind::Guid) + 1);

// Empty for a code that stands for no kind.
constexpr VariantKind kindOfCode(ZoTypeCode code) noexcept {
  const ZoTypeCode base = ZoType::baseCode(code);
  const auto* const row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                       [base](const KindRow& each) { return each.code == base; });
  return row == std::end(kKinds) ? VariantKind::Empty
                                 : static_cast<VariantKind>(row - std::begin(kKinds));
}

}  // namespace zo
