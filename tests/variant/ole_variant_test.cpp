// Variants through OLE Automation and back, with Automation's own functions as the other side.
#include <windows.h>
// windows.h before Automation's headers
#include <gtest/gtest.h>
#include <oleauto.h>
#include <zo/variant/ole_variant.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <cstring>
#include <limits>
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
  Ole(const Ole&) = delete;
  Ole& operator=(const Ole&) = delete;

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
  const ZoVariant date(INT64_C(133'000'000'000'000'000), ZoTypeCode::Date);
  const _GUID guid = {1, 2, 0xABCD, {4, 5, 6, 7, 8, 9, 10, 11}};
  const ZoString text(std::wstring_view(L"a\0b", 3));
  double target = 5;
  for (const Case& c : std::vector<Case>{
           {{}, VT_EMPTY, {}},
           {INT32_MIN, VT_I4, INT32_MIN},
           {ZoVariant(5, ZoTypeCode::Bool, 4), VT_BOOL, ZoVariant(1, ZoTypeCode::Bool)},
           {ZoVariant(0, ZoTypeCode::Bool), VT_BOOL, ZoVariant(0, ZoTypeCode::Bool)},
           {ZoVariant(-7, ZoTypeCode::Short), VT_I2, ZoVariant(-7, ZoTypeCode::Short)},
           {ZoVariant(70000, ZoTypeCode::Short), VT_I4, 70000},
           {INT64_MAX, VT_I8, INT64_MAX},
           {date, VT_DATE, date},
           {-0.1, VT_R8, -0.1},
           {HUGE_VAL, VT_R8, HUGE_VAL},
           {ZoVariant(2.5, ZoTypeCode::Length), VT_R8, 2.5},
           {text, VT_BSTR, text},
           {L"", VT_BSTR, L""},
           {ZoVariant(reinterpret_cast<void*>(0x1234)), VT_UI8, std::int64_t{0x1234}},
           {guid, VT_BSTR, ZoVariant(guid).asString()},
           {ZoVariant(&target), VT_R8, 5.0}}) {
    const Ole ole(c.value);
    EXPECT_EQ(ole.value.vt, c.type);
    EXPECT_EQ(ole.back(), c.back);
  }
}

TEST(OleVariant, ReadsEveryNumberOfAutomation) {
  struct Case {
    VARTYPE type;
    void (*set)(VARIANT&);
    ZoVariant expected;
  };
  for (const Case& c : std::vector<Case>{
           {VT_NULL, [](VARIANT&) {}, {}},
           {VT_I1, [](VARIANT& v) { v.cVal = static_cast<CHAR>(-3); }, -3},
           {VT_UI1, [](VARIANT& v) { v.bVal = 200; }, 200},
           {VT_UI2, [](VARIANT& v) { v.uiVal = 60000; }, 60000},
           {VT_UI4, [](VARIANT& v) { v.ulVal = 5; }, 5},
           {VT_UI4, [](VARIANT& v) { v.ulVal = 0xFFFFFFFF; }, std::int64_t{0xFFFFFFFF}},
           {VT_INT, [](VARIANT& v) { v.intVal = -1; }, -1},
           {VT_ERROR, [](VARIANT& v) { v.scode = E_FAIL; }, static_cast<int>(E_FAIL)},
           {VT_R4, [](VARIANT& v) { v.fltVal = 0.5F; }, 0.5},
           {VT_CY, [](VARIANT& v) { v.cyVal.int64 = -12345; }, -1.2345},
           {VT_BSTR, [](VARIANT& v) { v.bstrVal = nullptr; }, L""},
           {VT_DECIMAL, [](VARIANT& v) { VarDecFromI4(1234, &v.decVal); }, 1234.0}}) {
    Ole ole;
    c.set(ole.value);
    ole.value.vt = c.type;  // last: a decimal lies over it
    EXPECT_EQ(ole.back(), c.expected);
  }
  LONG number = 7;
  Ole reference, outer;
  reference.value.vt = VT_BYREF | VT_I4;
  reference.value.plVal = &number;
  EXPECT_EQ(reference.back(), ZoVariant(7));
  outer.value.vt = VT_BYREF | VT_VARIANT;
  outer.value.pvarVal = &reference.value;
  EXPECT_EQ(outer.back(), ZoVariant(7));
  outer.value.pvarVal = &outer.value;
  outer.expectRefused();
  outer.value.pvarVal = nullptr;
  outer.expectRefused();
}

TEST(OleVariant, WhatHasNoCounterpartIsRefusedAndChangesNothing) {
  for (const int type : {int{VT_RECORD}, int{VT_HRESULT}, 99, VT_ARRAY | VT_I4, VT_BYREF | VT_I4}) {
    Ole ole;
    ole.value.vt = static_cast<VARTYPE>(type);
    ole.expectRefused();
    ole.value.vt = VT_EMPTY;
  }
  Ole big;
  big.value.vt = VT_UI8;
  big.value.ullVal = UINT64_MAX;
  big.expectRefused();
  big.value.vt = VT_DATE;
  for (const double date :
       {-657435.0, 2958466.0, std::numeric_limits<double>::quiet_NaN(), HUGE_VAL}) {
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
  const auto dateOf = [](std::int64_t ticks) {
    return Ole(ZoVariant(ticks, ZoTypeCode::Date)).value.date;
  };
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
  EXPECT_EQ(dateOf(dayZero), 0.0);
  EXPECT_EQ(dateOf(dayZero - day * 3 / 4), -1.25);
  for (const int days : {-109'000, -2, 1, 2'900'000})
    EXPECT_EQ(dateOf(dayZero + days * day - 1), days) << "a moment before midnight";
}

TEST(OleVariant, TreesAreArraysThatComeBack) {
  const ZoVariant value(Dict{{L"list", Array{1, L"two", {}}},
                             {L"point", ZoPoint(1, 2, 3)},
                             {L"none", Array{}},
                             {L"nobody", Dict{}},
                             {L"inner", Dict{{L"x", 2.5}}}});
  Ole ole(value), copied;
  EXPECT_EQ(ole.value.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(SafeArrayGetDim(ole.value.parray), 2u);
  EXPECT_EQ(ole.back(), value);
  ASSERT_EQ(VariantCopy(&copied.value, &ole.value), S_OK);
  EXPECT_EQ(copied.back(), value);
  EXPECT_EQ(Ole(ZoVector(1, 2, 3)).back(), ZoVariant(ZoPoint(1, 2, 3))) << "three reals";
}

// A safe array of one type and its variant.
struct OleArray : Ole {
  OleArray(VARENUM type, std::vector<SAFEARRAYBOUND> bounds) {
    value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
    value.parray = SafeArrayCreate(static_cast<VARTYPE>(type), static_cast<UINT>(bounds.size()),
                                   bounds.data());
    EXPECT_NE(value.parray, nullptr);
  }
  void put(std::vector<LONG> at, void* element) {
    EXPECT_EQ(SafeArrayPutElement(value.parray, at.data(), element), S_OK);
  }
};

TEST(OleVariant, ReadsArraysOfEveryTypeAndShape) {
  OleArray shorts(VT_I2, {{2, 5}});
  for (SHORT i = 5; i < 7; ++i) shorts.put({i}, &i);
  EXPECT_EQ(shorts.back(),
            ZoVariant(Array{ZoVariant(5, ZoTypeCode::Short), ZoVariant(6, ZoTypeCode::Short)}));
  OleArray longs(VT_I4, {{2, 0}, {3, 0}});
  for (LONG i = 0; i < 6; ++i) longs.put({i / 3, i % 3}, &i);
  EXPECT_EQ(longs.back(), ZoVariant(Array{Array{0, 1, 2}, Array{3, 4, 5}}));
  OleArray decimals(VT_DECIMAL, {{2, 0}});
  DECIMAL decimal;
  ASSERT_EQ(VarDecFromR8(2.5, &decimal), S_OK);
  decimals.put({1}, &decimal);
  EXPECT_EQ(decimals.back(), ZoVariant(Array{0.0, 2.5}));
  EXPECT_EQ(OleArray(VT_R8, {{4, 0}}).back().entries(), 4u);
  EXPECT_EQ(OleArray(VT_R8, {{3, 0}}).back(), ZoVariant(ZoPoint()));
  EXPECT_EQ(OleArray(VT_UI1, {{0, 0}}).back(), ZoVariant(Array{}));
  EXPECT_EQ(OleArray(VT_I4, {{1'000'000'000, 0}, {0, 0}}).back(), ZoVariant(Array{}))
      << "rows of nothing";
  // Two columns, but no texts in the first, or one twice: no dictionary.
  OleArray table(VT_VARIANT, {{2, 0}, {2, 0}});
  EXPECT_EQ(table.back(), ZoVariant(Array{Array{{}, {}}, Array{{}, {}}}));
  for (LONG row = 0; row < 2; ++row) {
    Ole text(ZoVariant(row == 0 ? L"key" : L"KEY"));
    table.put({row, 0}, &text.value);
  }
  EXPECT_EQ(table.back().type(), ZoVariant::kSequence);
}

TEST(OleVariant, InterfacesAreCountedByAutomationOnly) {
  ICreateErrorInfo* object = nullptr;
  ASSERT_EQ(CreateErrorInfo(&object), S_OK);
  const auto references = [&] {
    object->AddRef();
    return object->Release();
  };
  const ZoVariant value(static_cast<void*>(static_cast<IUnknown*>(object)), ZoTypeCode::Unknown);
  Ole ole(value);
  EXPECT_EQ(ole.value.vt, VT_UNKNOWN);
  EXPECT_EQ(references(), 2u);
  EXPECT_EQ(ole.back(), value);
  EXPECT_EQ(references(), 2u);
  const ZoVariant none(static_cast<void*>(nullptr), ZoTypeCode::Dispatch);
  EXPECT_EQ(ZoVariantToOle(none, ole.value), 0);
  EXPECT_EQ(ole.back(), none);
  EXPECT_EQ(references(), 1u) << "what a variant held is cleared";
  EXPECT_EQ(object->Release(), 0u);
}

}  // namespace
