// Variants through OLE Automation and back, with Automation's own functions as the other side.
#include <windows.h>
// windows.h before Automation's headers
#include <gtest/gtest.h>
#include <oleauto.h>
#include <zo/variant/ole_variant.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "variant/variant_printers.h"

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;

class Ole {
 public:
  Ole() { VariantInit(&value); }
  explicit Ole(const ZoVariant& from) : Ole() { EXPECT_EQ(ZoVariantToOle(from, value), 0); }
  ~Ole() { EXPECT_EQ(VariantClear(&value), S_OK); }
  Ole(Ole&& other) noexcept : value(other.value) { VariantInit(&other.value); }

  [[nodiscard]] ZoVariant back() const {
    ZoVariant out(L"untouched");
    EXPECT_EQ(ZoOleToVariant(value, out), 0);
    return out;
  }
  void expectRefused() const {
    ZoVariant out(L"untouched");
    EXPECT_EQ(ZoOleToVariant(value, out), 1);
    EXPECT_EQ(out, ZoVariant(L"untouched"));
  }

  VARIANT value;
};

TEST(OleVariant, ScalarsHaveAutomationsTypesAndComeBack) {
  struct Case {
    ZoVariant value;
    VARTYPE type;
    ZoVariant back;
  };
  const _GUID guid = {1, 2, 0xABCD, {4, 5, 6, 7, 8, 9, 10, 11}};
  const ZoString text(std::wstring_view(L"a\0b", 3));
  double target = 5;
  for (const Case& c : std::vector<Case>{
           {ZoVariant(5, ZoTypeCode::Bool, 4), VT_BOOL, ZoVariant(1, ZoTypeCode::Bool)},
           {ZoVariant(70000, ZoTypeCode::Short), VT_I4, 70000},
           {INT64_MAX, VT_I8, INT64_MAX},
           {ZoVariant(-0.1, ZoTypeCode::Length), VT_R8, -0.1},
           {text, VT_BSTR, text},
           {ZoVariant(reinterpret_cast<void*>(0x1234)), VT_UI8, std::int64_t{0x1234}},
           {guid, VT_BSTR, ZoVariant(guid).asString()},
           {ZoVariant(&target), VT_R8, 5.0}}) {
    const Ole ole(c.value);
    EXPECT_EQ(ole.value.vt, c.type);
    EXPECT_EQ(ole.back(), c.back);
  }
}

TEST(OleVariant, WhatHasNoCounterpartIsRefusedAndChangesNothing) {
  for (const int type : {int{VT_RECORD}, int{VT_HRESULT}, 99, VT_ARRAY | VT_I4, VT_BYREF | VT_I4}) {
    Ole ole;
    ole.value.vt = static_cast<VARTYPE>(type);
    ole.expectRefused();
    ole.value.vt = VT_EMPTY;
  }
  Ole big, decimal, outer;
  VarDecFromI4(1234, &decimal.value.decVal);
  decimal.value.vt = VT_DECIMAL;  // last: the decimal lies over it
  outer.value.vt = VT_BYREF | VT_VARIANT;
  outer.value.pvarVal = &decimal.value;
  EXPECT_EQ(outer.back(), ZoVariant(1234.0));
  outer.value.pvarVal = &outer.value;
  outer.expectRefused();
  big.value.vt = VT_UI8;
  big.value.ullVal = UINT64_MAX;
  big.expectRefused();
  big.value.vt = VT_DATE;
  for (const double date : {-657435.0, 2958466.0, std::nan(""), HUGE_VAL}) {
    big.value.date = date;
    big.expectRefused();
  }
  ZoVariant deep(ZoVariant::kSequence);
  for (unsigned int i = 1; i < ZoVariant::kMaxDepth; ++i) deep = inSequence(std::move(deep));
  EXPECT_EQ(Ole(deep).back(), deep);
  Ole kept(ZoVariant(5));
  EXPECT_EQ(ZoVariantToOle(inSequence(deep), kept.value), 1);
  EXPECT_EQ(ZoVariantToOle(ZoVariant(INT64_MAX, ZoTypeCode::Date), kept.value), 1);
  EXPECT_EQ(kept.back(), ZoVariant(5));
}

// The same moment by Automation's own reckoning.
TEST(OleVariant, DatesAreTheMomentsThatAutomationTakesThemFor) {
  std::mt19937_64 random(13);
  for (int i = 0; i < 300; ++i) {
    // 1650 to 9900; whole seconds, which is all that Automation's conversion knows.
    const auto ticks =
        static_cast<std::int64_t>(random() % 260'000'000'000 + 1'600'000'000) * 10'000'000;
    const Ole ole(ZoVariant(ticks, ZoTypeCode::Date));
    SYSTEMTIME expected, actual;
    FILETIME fileTime;
    std::memcpy(&fileTime, &ticks, sizeof ticks);
    ASSERT_TRUE(FileTimeToSystemTime(&fileTime, &expected));
    ASSERT_TRUE(VariantTimeToSystemTime(ole.value.date, &actual));
    EXPECT_EQ(std::memcmp(&expected, &actual, sizeof expected), 0) << ticks;
    EXPECT_EQ(ole.back().asBigInt(), ticks);
  }
  constexpr std::int64_t day = INT64_C(864'000'000'000), dayZero = 109'205 * day;
  for (const int days : {-2, 1})  // a moment before midnight
    EXPECT_EQ(Ole(ZoVariant(dayZero + days * day - 1, ZoTypeCode::Date)).value.date, days);
}

TEST(OleVariant, TreesAreArraysThatComeBack) {
  const ZoVariant value(Dict{{L"list", Array{1, L"two", {}, Array{}, Dict{{L"x", 2.5}}}},
                             {L"point", ZoPoint(1, 2, 3)},
                             {L"nobody", Dict{}}});
  Ole ole(value), copied;
  EXPECT_EQ(ole.value.vt, VT_ARRAY | VT_VARIANT);
  ASSERT_EQ(VariantCopy(&copied.value, &ole.value), S_OK);
  EXPECT_EQ(copied.back(), value);
  EXPECT_EQ(Ole(ZoVector(1, 2, 3)).back(), ZoVariant(ZoPoint(1, 2, 3))) << "three reals";
}

// A safe array of zeros.
Ole arrayOf(VARENUM type, std::vector<SAFEARRAYBOUND> bounds) {
  Ole array;
  array.value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  array.value.parray =
      SafeArrayCreate(static_cast<VARTYPE>(type), static_cast<UINT>(bounds.size()), bounds.data());
  EXPECT_NE(array.value.parray, nullptr);
  return array;
}

TEST(OleVariant, ReadsArraysOfEveryTypeAndShape) {
  const Ole longs = arrayOf(VT_I4, {{2, 5}, {3, 0}});
  for (LONG i = 0; i < 6; ++i) {
    LONG at[] = {5 + i / 3, i % 3};
    EXPECT_EQ(SafeArrayPutElement(longs.value.parray, at, &i), S_OK);
  }
  EXPECT_EQ(longs.back(), ZoVariant(Array{Array{0, 1, 2}, Array{3, 4, 5}}));
  EXPECT_EQ(arrayOf(VT_I4, {{1'000'000'000, 0}, {0, 0}}).back(), ZoVariant(Array{}))
      << "rows of nothing";
  // Two columns, but a text of the first stands there twice: no dictionary.
  const Ole table = arrayOf(VT_VARIANT, {{2, 0}, {2, 0}});
  for (LONG row = 0; row < 2; ++row) {
    Ole text(ZoVariant(row == 0 ? L"key" : L"KEY"));
    LONG at[] = {row, 0};
    EXPECT_EQ(SafeArrayPutElement(table.value.parray, at, &text.value), S_OK);
  }
  EXPECT_EQ(table.back().type(), ZoVariant::kSequence);
}

// Each level looks like a dictionary until its last key; read twice, forty would take for ever.
TEST(OleVariant, NoValueIsReadTwice) {
  Ole inner(ZoVariant(5));
  for (int level = 0; level < 40; ++level) {
    Ole table = arrayOf(VT_VARIANT, {{2, 0}, {2, 0}});
    Ole key(ZoVariant(L"key"));
    for (const LONG row : {0, 1}) {
      LONG at[] = {row, 0};
      EXPECT_EQ(SafeArrayPutElement(table.value.parray, at, &key.value), S_OK);
    }
    LONG at[] = {0, 1};
    EXPECT_EQ(SafeArrayPutElement(table.value.parray, at, &inner.value), S_OK);
    std::swap(inner.value, table.value);
  }
  EXPECT_EQ(inner.back().value(L"0/1").type(), ZoVariant::kSequence);
}

TEST(OleVariant, InterfacesAreCountedByAutomationOnly) {
  ICreateErrorInfo* object = nullptr;
  ASSERT_EQ(CreateErrorInfo(&object), S_OK);
  const ZoVariant value(static_cast<void*>(static_cast<IUnknown*>(object)), ZoTypeCode::Unknown);
  Ole ole(value);
  EXPECT_EQ(ole.value.vt, VT_UNKNOWN);
  EXPECT_EQ(ole.back(), value);
  EXPECT_EQ(ZoVariantToOle(ZoVariant(), ole.value), 0);
  EXPECT_EQ(object->Release(), 0u) << "what a variant held is cleared";
}

}  // namespace
