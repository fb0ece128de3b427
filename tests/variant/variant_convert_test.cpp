// From every kind to every kind: what converts, what rounds, what is refused.
#include <gtest/gtest.h>
#include <zo/variant/variant.h>

#include <climits>
#include <clocale>
#include <cstring>
#include <limits>
#include <vector>

#include "variant/variant_printers.h"

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr _GUID kGuid = {0xABCDEF01, 0xABCD, 0xEFAB, {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 7, 24}};
constexpr wchar_t kGuidText[] = L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}";

// A value of each kind that differs from everything in the conversions below.
std::vector<ZoVariant> targets() {
  return {ZoVariant(4711),
          ZoVariant(std::int64_t{4711}),
          ZoVariant(4711.5),
          ZoVariant(L"untouched"),
          ZoVariant(reinterpret_cast<void*>(4711)),
          ZoVariant(ZoPoint(4, 7, 11)),
          ZoVariant(ZoVector(4, 7, 11)),
          ZoVariant(Dict{{L"untouched", ZoVariant(1)}}),
          ZoVariant(Array{ZoVariant(4711)}),
          ZoVariant(_GUID{4711, 0, 0, {}})};
}

// get() into a variable of the target's kind, as a variant.
ZoVariant gotten(const ZoVariant& value, const ZoVariant& target, int& result) {
  const auto get = [&](auto variable) {
    EXPECT_EQ(target.get(variable), 0);
    result = value.get(variable);
    return ZoVariant(variable);
  };
  switch (target.type()) {
    case ZoVariant::kInt:
      return get(int{});
    case ZoVariant::kBigInt:
      return get(std::int64_t{});
    case ZoVariant::kReal:
      return get(double{});
    case ZoVariant::kString:
      return get(ZoString{});
    case ZoVariant::kPointer:
      return get(static_cast<void*>(nullptr));
    case ZoVariant::kPoint:
      return get(ZoPoint{});
    case ZoVariant::kVector:
      return get(ZoVector{});
    case ZoVariant::kDict:
      return get(Dict{});
    case ZoVariant::kSequence:
      return get(Array{});
    default:
      return get(_GUID{});
  }
}

// get() and set() agree on what the value becomes in each kind: `expected` holds the kinds that it
// converts to; all others are refused.
void expectConversions(const ZoVariant& value, const std::vector<ZoVariant>& expected) {
  for (const ZoVariant& target : targets()) {
    const ZoVariant* wanted = nullptr;
    for (const ZoVariant& e : expected) {
      if (e.type() == target.type()) wanted = &e;
    }
    SCOPED_TRACE(testing::PrintToString(value) + " to kind " + std::to_string(target.type()));
    int result = -1;
    const ZoVariant got = gotten(value, target, result);
    EXPECT_EQ(result, wanted ? 0 : 1);
    EXPECT_EQ(got, wanted ? *wanted : target);
    ZoVariant set = target;
    EXPECT_EQ(set.setCode(ZoTypeCode::NoType), 0);
    set.setFlags(4u);
    EXPECT_EQ(set.set(value), wanted ? 0 : 1);
    EXPECT_EQ(set.code(), ZoTypeCode::NoType);
    EXPECT_EQ(set.flags(), 4u);
    EXPECT_TRUE(set.isEqualTo(wanted ? *wanted : target, ZoTol(0, 0)));
  }
}

ZoVariant big(std::int64_t value) { return ZoVariant(value); }

TEST(VariantConvert, EveryKindToEveryKind) {
  expectConversions(ZoVariant(), {});
  expectConversions(ZoVariant(-7), {-7, big(-7), -7.0, L"-7"});
  expectConversions(big(-7), {-7, big(-7), -7.0, L"-7"});
  expectConversions(ZoVariant(-7.0), {-7, big(-7), -7.0, L"-7"});
  expectConversions(ZoVariant(L"-7"), {-7, big(-7), -7.0, L"-7"});
  expectConversions(ZoVariant(reinterpret_cast<void*>(0xABCDEF)),
                    {ZoVariant(reinterpret_cast<void*>(0xABCDEF)), L"0x0000000000ABCDEF"});
  expectConversions(ZoVariant(ZoPoint(1, -2.5, 0.1)),
                    {ZoPoint(1, -2.5, 0.1), ZoVector(1, -2.5, 0.1), L"(1, -2.5, 0.1)"});
  expectConversions(ZoVariant(ZoVector(1, -2.5, 0.1)),
                    {ZoPoint(1, -2.5, 0.1), ZoVector(1, -2.5, 0.1), L"(1, -2.5, 0.1)"});
  expectConversions(ZoVariant(kGuid), {kGuid, kGuidText});
  const Dict dict{{L"a", ZoVariant(1)}};
  expectConversions(ZoVariant(dict), {dict, L"Dict {\n\t\"a\" = Int 1\n}"});
  const Array array{ZoVariant(1)};
  expectConversions(ZoVariant(array), {array, L"Sequence [\n\tInt 1\n]"});
}

TEST(VariantConvert, NumbersRoundToNearestAndStayInRange) {
  expectConversions(big(INT64_C(1) << 31), {big(INT64_C(1) << 31), 0x1p31, L"2147483648"});
  expectConversions(big(INT32_MIN), {INT32_MIN, big(INT32_MIN), -0x1p31, L"-2147483648"});
  expectConversions(big(INT64_MAX), {big(INT64_MAX), 0x1p63, L"9223372036854775807"});
  struct Case {
    double value;
    std::int64_t rounded;
    const wchar_t* text;
  };
  for (const Case& c : std::vector<Case>{{2.5, 3, L"2.5"},
                                         {-2.5, -3, L"-2.5"},
                                         {0.49999999999999994, 0, L"0.49999999999999994"},
                                         {2.9999999999, 3, L"2.9999999999"},
                                         {-0x1p31 - 0.25, INT32_MIN, L"-2147483648.25"}})
    expectConversions(c.value, {static_cast<int>(c.rounded), big(c.rounded), c.value, c.text});
  expectConversions(0x1p31, {big(INT64_C(1) << 31), 0x1p31, L"2147483648"});
  expectConversions(-0x1p63, {big(INT64_MIN), -0x1p63, L"-9223372036854775808"});
  expectConversions(0x1p63, {0x1p63, L"9223372036854775808"});
  expectConversions(kInf, {kInf, L"inf"});
  expectConversions(std::numeric_limits<double>::quiet_NaN(),
                    {std::numeric_limits<double>::quiet_NaN(), L"nan"});
}

TEST(VariantConvert, TextsMustBeTheValueAsAWhole) {
  expectConversions(L" \t12\n", {12, big(12), 12.0, L" \t12\n"});
  expectConversions(L"1e3", {1000.0, L"1e3"});
  expectConversions(L"1.5", {1.5, L"1.5"});
  expectConversions(L"-inf", {-kInf, L"-inf"});
  expectConversions(L"2147483648", {big(INT64_C(1) << 31), 0x1p31, L"2147483648"});
  expectConversions(L"9223372036854775808", {0x1p63, L"9223372036854775808"});
  expectConversions(kGuidText, {kGuid, kGuidText});
  expectConversions(L" ( 1,2 , -3e2 ) ",
                    {ZoPoint(1, 2, -300), ZoVector(1, 2, -300), L" ( 1,2 , -3e2 ) "});
  for (const wchar_t* none :
       {L"", L" ", L"x", L"1x", L"1 2", L"0x10", L"1e400", L"(1, 2)", L"(1, 2, 3, 4)",
        L"(1, 2, 3) x", L"(1 2 3)", L"1, 2, 3", L"(1, 2, 3", L"(,,)", L"(1, x, 3)",
        L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718", L"Dict {}", L"Sequence []"})
    expectConversions(none, {none});
}

TEST(VariantConvert, NoLocaleHasASay) {
  for (const char* locale : {"German", "French_France.1252", ""}) {
    std::setlocale(LC_ALL, locale);
    EXPECT_EQ(ZoVariant(1234.5).asString(), L"1234.5");
    EXPECT_EQ(ZoVariant(L"1234.5").asReal(), 1234.5);
    EXPECT_EQ(ZoVariant(L"1,5").asReal(-1), -1);
    EXPECT_EQ(ZoVariant(ZoPoint(0.5, 0, 0)).asString(), L"(0.5, 0, 0)");
  }
  std::setlocale(LC_ALL, "C");
}

TEST(VariantConvert, AsGivesTheFallbackWhereGetRefuses) {
  const ZoVariant empty;
  EXPECT_EQ(empty.asInt(3), 3);
  EXPECT_EQ(empty.asBigInt(3), 3);
  EXPECT_EQ(empty.asReal(3), 3);
  EXPECT_EQ(empty.asString(L"3"), L"3");
  EXPECT_EQ(empty.asPointer(), nullptr);
  EXPECT_EQ(empty.asPoint(ZoPoint(1, 2, 3)), ZoPoint(1, 2, 3));
  EXPECT_EQ(empty.asVector(ZoVector(1, 2, 3)), ZoVector(1, 2, 3));
  const _GUID guid = empty.asGuid(kGuid);
  EXPECT_EQ(std::memcmp(&guid, &kGuid, sizeof guid), 0);
  EXPECT_EQ(empty.asSequence(), nullptr);
  EXPECT_EQ(empty.asDict(), nullptr);
  EXPECT_EQ(ZoVariant(5).asReal(3), 5);
}

TEST(VariantConvert, AnEmptyVariantTakesKindAndCodeOfWhatItIsSetTo) {
  ZoVariant v;
  v.setFlags(8u);
  EXPECT_EQ(v.set(ZoVariant()), 0);
  EXPECT_TRUE(v.isEmpty());
  double target = 2.5;
  EXPECT_EQ(v.set(ZoVariant(&target, ZoTypeCode::Length, 1)), 0);
  EXPECT_FALSE(v.isReference());
  EXPECT_EQ(v, ZoVariant(2.5, ZoTypeCode::Length, 8));
}

// Texts keep zero characters on the way through a variant.
TEST(VariantConvert, TextsAreSharedAndWhole) {
  const ZoString text(std::wstring_view(L"a\0b", 3));
  const ZoVariant v(text);
  EXPECT_EQ(v.asString(), text);
  EXPECT_EQ(v.asString().data(), text.data()) << "one storage";
  ZoVariant copy = v;
  ZoString changed = copy.asString();
  changed.append(L"c");
  EXPECT_EQ(v.asString(), text);
}

}  // namespace
