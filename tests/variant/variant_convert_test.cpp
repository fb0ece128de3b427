// From every kind to every kind: what converts, what rounds, what is refused.
#include <gtest/gtest.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <limits>
#include <vector>

#include "variant/variant_printers.h"

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;

constexpr _GUID kGuid = {0xABCDEF01, 0xABCD, 0xEFAB, {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 7, 24}};
constexpr wchar_t kGuidText[] = L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}";

ZoVariant big(std::int64_t value) { return value; }

// get(), as...() and set() agree on what the value becomes in the kind of `target`, or that it is
// refused (null).
template <class T>
void expectConversion(const ZoVariant& value, const T& target, const std::vector<ZoVariant>& to) {
  const ZoVariant untouched(target);
  SCOPED_TRACE(testing::PrintToString(value) + " to kind " + std::to_string(untouched.type()));
  ZoVariant expected = untouched;
  int status = 1;
  for (const ZoVariant& e : to) {
    if (e.type() != untouched.type()) continue;
    expected = e;
    status = 0;
  }
  T variable = target;
  EXPECT_EQ(value.get(variable), status);
  EXPECT_EQ(ZoVariant(variable), expected);
  ZoVariant set = untouched;
  set.setFlags(4u);
  EXPECT_EQ(set.set(value), status);
  EXPECT_EQ(set.flags(), 4u);
  EXPECT_TRUE(set.isEqualTo(expected, ZoTol(0, 0)));
}

// To all kinds: `to` holds what the value converts to.
void expectConversions(const ZoVariant& value, const std::vector<ZoVariant>& to) {
  expectConversion(value, 4711, to);
  expectConversion(value, std::int64_t{4711}, to);
  expectConversion(value, 4711.5, to);
  expectConversion(value, ZoString(L"untouched"), to);
  expectConversion(value, reinterpret_cast<void*>(4711), to);
  expectConversion(value, ZoPoint(4, 7, 11), to);
  expectConversion(value, ZoVector(4, 7, 11), to);
  expectConversion(value, Dict{{L"untouched", 1}}, to);
  expectConversion(value, Array{4711}, to);
  expectConversion(value, _GUID{4711, 0, 0, {}}, to);
}

TEST(VariantConvert, EveryKindToEveryKind) {
  expectConversions(ZoVariant(), {});
  for (const ZoVariant& seven : std::vector<ZoVariant>{-7, big(-7), -7.0, L"-7"})
    expectConversions(seven, {-7, big(-7), -7.0, L"-7"});
  const ZoVariant pointer(reinterpret_cast<void*>(0xABCDEF));
  expectConversions(pointer, {pointer, L"0x0000000000ABCDEF"});
  const ZoPoint p(1, -2.5, 0.1);
  const ZoVector v(1, -2.5, 0.1);
  expectConversions(p, {p, v, L"(1, -2.5, 0.1)"});
  expectConversions(v, {p, v, L"(1, -2.5, 0.1)"});
  expectConversions(kGuid, {kGuid, kGuidText});
  const Dict dict{{L"a", 1}};
  expectConversions(dict, {dict, L"Dict {\n\t\"a\" = Int 1\n}"});
  const Array array{1};
  expectConversions(array, {array, L"Sequence [\n\tInt 1\n]"});
}

TEST(VariantConvert, NumbersRoundToNearestAndStayInRange) {
  expectConversions(big(INT32_MIN), {INT32_MIN, big(INT32_MIN), -0x1p31, L"-2147483648"});
  expectConversions(big(INT64_MAX), {big(INT64_MAX), 0x1p63, L"9223372036854775807"});
  expectConversions(2.5, {3, big(3), 2.5, L"2.5"});
  constexpr double belowHalf = 0.49999999999999994;
  expectConversions(belowHalf, {0, big(0), belowHalf, L"0.49999999999999994"});
  expectConversions(-0x1p31 - 0.25, {INT32_MIN, big(INT32_MIN), -0x1p31 - 0.25, L"-2147483648.25"});
  expectConversions(0x1p63, {0x1p63, L"9223372036854775808"});
  for (const double d : {std::numeric_limits<double>::infinity(), std::nan("")})
    expectConversions(d, {d, std::isnan(d) ? L"nan" : L"inf"});
}

TEST(VariantConvert, TextsMustBeTheValueAsAWhole) {
  expectConversions(L" \t12\n", {12, big(12), 12.0, L" \t12\n"});
  expectConversions(L"2147483648", {big(INT64_C(1) << 31), 0x1p31, L"2147483648"});
  expectConversions(kGuidText, {kGuid, kGuidText});
  const wchar_t* const spaced = L" ( 1,2 , -3e2 ) ";
  expectConversions(spaced, {ZoPoint(1, 2, -300), ZoVector(1, 2, -300), spaced});
  for (const wchar_t* none :
       {L"", L"x", L"1x", L"1 2", L"0x10", L"1e400", L"(1, 2)", L"(1, 2, 3, 4)", L"(1, 2, 3) x",
        L"1, 2, 3", L"(1, 2, 3", L"(,,)", L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718", L"Dict {}"})
    expectConversions(none, {none});
}

}  // namespace
