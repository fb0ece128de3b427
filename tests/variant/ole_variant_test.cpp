// Variants through OLE Automation and back, with Automation's own functions as the other side.
#include <windows.h>
// windows.h before Automation's headers
#include <gtest/gtest.h>
#include <oleauto.h>
#include <zo/text/number_text.h>
#include <zo/variant/ole_variant.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
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
  constexpr double inf = std::numeric_limits<double>::infinity();
  struct Case {
    ZoVariant value;
    VARTYPE type;
    ZoVariant back;
  };
  const ZoVariant date(INT64_C(133'000'000'000'000'000), ZoTypeCode::Date);
  const _GUID guid = {1, 2, 0xABCD, {4, 5, 6, 7, 8, 9, 10, 11}};
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
           {inf, VT_R8, inf},
           {ZoVariant(2.5, ZoTypeCode::Length), VT_R8, 2.5},
           {ZoString(std::wstring_view(L"a\0b", 3)), VT_BSTR,
            ZoString(std::wstring_view(L"a\0b", 3))},
           {L"", VT_BSTR, L""},
           {ZoVariant(reinterpret_cast<void*>(0x1234)), VT_UI8, std::int64_t{0x1234}},
           {guid, VT_BSTR, ZoVariant(guid).asString()}}) {
    const Ole ole(c.value);
    EXPECT_EQ(ole.value.vt, c.type);
    EXPECT_EQ(ole.back(), c.back);
  }
  double target = 5;
  EXPECT_EQ(Ole(ZoVariant(&target)).back(), ZoVariant(5.0)) << "a reference goes as its value";
}

TEST(OleVariant, ReadsEveryNumberOfAutomation) {
  const auto read = [](VARTYPE type, auto set) {
    Ole ole;
    ole.value.vt = type;
    set(ole.value);
    return ole.back();
  };
  EXPECT_EQ(read(VT_NULL, [](VARIANT&) {}), ZoVariant());
  EXPECT_EQ(read(VT_I1, [](VARIANT& v) { v.cVal = static_cast<CHAR>(-3); }), ZoVariant(-3));
  EXPECT_EQ(read(VT_UI1, [](VARIANT& v) { v.bVal = 200; }), ZoVariant(200));
  EXPECT_EQ(read(VT_UI2, [](VARIANT& v) { v.uiVal = 60000; }), ZoVariant(60000));
  EXPECT_EQ(read(VT_UI4, [](VARIANT& v) { v.ulVal = 5; }), ZoVariant(5));
  EXPECT_EQ(read(VT_UI4, [](VARIANT& v) { v.ulVal = 0xFFFFFFFF; }),
            ZoVariant(std::int64_t{0xFFFFFFFF}));
  EXPECT_EQ(read(VT_INT, [](VARIANT& v) { v.intVal = -1; }), ZoVariant(-1));
  EXPECT_EQ(read(VT_ERROR, [](VARIANT& v) { v.scode = E_FAIL; }),
            ZoVariant(static_cast<int>(E_FAIL)));
  EXPECT_EQ(read(VT_R4, [](VARIANT& v) { v.fltVal = 0.5F; }), ZoVariant(0.5));
  EXPECT_EQ(read(VT_CY, [](VARIANT& v) { v.cyVal.int64 = -12345; }), ZoVariant(-1.2345));
  EXPECT_EQ(read(VT_BSTR, [](VARIANT& v) { v.bstrVal = nullptr; }), ZoVariant(L""));
  Ole decimal;
  ASSERT_EQ(VarDecFromR8(1234.5, &decimal.value.decVal), S_OK);
  decimal.value.vt = VT_DECIMAL;
  EXPECT_EQ(decimal.back(), ZoVariant(1234.5));

  int number = 7;
  Ole reference;
  reference.value.vt = VT_BYREF | VT_I4;
  reference.value.plVal = reinterpret_cast<LONG*>(&number);
  EXPECT_EQ(reference.back(), ZoVariant(7));
  Ole outer;
  outer.value.vt = VT_BYREF | VT_VARIANT;
  outer.value.pvarVal = &reference.value;
  EXPECT_EQ(outer.back(), ZoVariant(7));
  outer.value.pvarVal = &outer.value;
  outer.expectRefused();
  outer.value.pvarVal = nullptr;
  outer.expectRefused();
}

TEST(OleVariant, WhatHasNoCounterpartIsRefusedAndChangesNothing) {
  for (const VARTYPE type :
       {VT_RECORD, VT_HRESULT, static_cast<VARENUM>(99), static_cast<VARENUM>(VT_ARRAY | VT_I4),
        static_cast<VARENUM>(VT_BYREF | VT_I4)}) {
    Ole ole;
    ole.value.vt = type;
    ole.expectRefused();
    ole.value.vt = VT_EMPTY;
  }
  Ole big;
  big.value.vt = VT_UI8;
  big.value.ullVal = UINT64_MAX;
  big.expectRefused();
  for (const double date :
       {-657435.0, 2958466.0, std::numeric_limits<double>::quiet_NaN(), HUGE_VAL}) {
    big.value.vt = VT_DATE;
    big.value.date = date;
    big.expectRefused();
  }
  ZoVariant deep(ZoVariant::kSequence);
  for (unsigned int i = 1; i < ZoVariant::kMaxDepth; ++i) deep = ZoVariant(Array{std::move(deep)});
  EXPECT_EQ(Ole(deep).back(), deep);
  Ole kept(ZoVariant(5));
  EXPECT_EQ(ZoVariantToOle(ZoVariant(Array{deep}), kept.value), 1);
  EXPECT_EQ(ZoVariantToOle(ZoVariant(INT64_MAX, ZoTypeCode::Date), kept.value), 1);
  EXPECT_EQ(kept.back(), ZoVariant(5));
  EXPECT_EQ(ZoVariantToOle(ZoVariant(L"text"), kept.value), 0) << "what it held is cleared";
  EXPECT_EQ(kept.back(), ZoVariant(L"text"));
}

// The same moment by Automation's own reckoning.
TEST(OleVariant, DatesAreTheMomentsThatAutomationTakesThemFor) {
  std::mt19937_64 random(13);
  constexpr std::int64_t second = 10'000'000;
  for (int i = 0; i < 300; ++i) {
    // 1650 to 9900; whole seconds, which is all that Automation's conversion knows.
    const std::int64_t ticks =
        static_cast<std::int64_t>(random() % 260'000'000'000 + 1'600'000'000) * second;
    const Ole ole(ZoVariant(ticks, ZoTypeCode::Date));
    SYSTEMTIME expected;
    SYSTEMTIME actual;
    FILETIME fileTime;
    std::memcpy(&fileTime, &ticks, sizeof ticks);
    ASSERT_TRUE(FileTimeToSystemTime(&fileTime, &expected));
    ASSERT_TRUE(VariantTimeToSystemTime(ole.value.date, &actual));
    EXPECT_EQ(std::memcmp(&expected, &actual, sizeof expected), 0) << ticks;
    EXPECT_EQ(ole.back().asBigInt(), ticks);
  }
  EXPECT_EQ(Ole(ZoVariant(INT64_C(94'353'120'000'000'000), ZoTypeCode::Date)).value.date, 0.0);
  EXPECT_EQ(Ole(ZoVariant(INT64_C(94'353'120'000'000'000) - 648'000'000'000, ZoTypeCode::Date))
                .value.date,
            -1.25);
}

TEST(OleVariant, TreesAreArraysThatComeBack) {
  const ZoVariant value(
      Dict{{L"list", ZoVariant(Array{ZoVariant(1), ZoVariant(L"two"), ZoVariant()})},
           {L"point", ZoVariant(ZoPoint(1, 2, 3))},
           {L"none", ZoVariant(Array{})},
           {L"nobody", ZoVariant(Dict{})},
           {L"inner", ZoVariant(Dict{{L"x", ZoVariant(2.5)}})}});
  Ole ole(value);
  EXPECT_EQ(ole.value.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(SafeArrayGetDim(ole.value.parray), 2u);
  EXPECT_EQ(ole.back(), value);
  Ole copied;
  ASSERT_EQ(VariantCopy(&copied.value, &ole.value), S_OK);
  EXPECT_EQ(copied.back(), value);
  EXPECT_EQ(Ole(ZoVariant(ZoVector(1, 2, 3))).back(), ZoVariant(ZoPoint(1, 2, 3)))
      << "three reals are a point";
}

TEST(OleVariant, ReadsArraysOfEveryTypeAndShape) {
  const auto arrayOf = [](VARTYPE type, std::vector<SAFEARRAYBOUND> bounds) {
    auto ole = std::make_unique<Ole>();
    ole->value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
    ole->value.parray = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
    EXPECT_NE(ole->value.parray, nullptr);
    return ole;
  };
  const auto shorts = arrayOf(VT_I2, {{2, 5}});
  for (LONG i = 5; i < 7; ++i) {
    auto number = static_cast<SHORT>(-i);
    ASSERT_EQ(SafeArrayPutElement(shorts->value.parray, &i, &number), S_OK);
  }
  EXPECT_EQ(shorts->back(),
            ZoVariant(Array{ZoVariant(-5, ZoTypeCode::Short), ZoVariant(-6, ZoTypeCode::Short)}));

  const auto texts = arrayOf(VT_BSTR, {{2, 0}, {3, 0}});
  for (LONG row = 0; row < 2; ++row) {
    for (LONG column = 0; column < 3; ++column) {
      LONG at[] = {row, column};
      const ZoString text = ZoIntToStr(row * 10 + column);
      BSTR copy = SysAllocString(text);
      ASSERT_EQ(SafeArrayPutElement(texts->value.parray, at, copy), S_OK);
      SysFreeString(copy);
    }
  }
  EXPECT_EQ(texts->back().find(L"1/2")->asString(), L"12");
  EXPECT_EQ(texts->back().find(L"0/1")->asString(), L"1");
  EXPECT_EQ(texts->back().at(1u)->entries(), 3u);

  const auto decimals = arrayOf(VT_DECIMAL, {{2, 0}});
  LONG second = 1;
  DECIMAL decimal;
  ASSERT_EQ(VarDecFromR8(2.5, &decimal), S_OK);
  ASSERT_EQ(SafeArrayPutElement(decimals->value.parray, &second, &decimal), S_OK);
  EXPECT_EQ(decimals->back(), ZoVariant(Array{ZoVariant(0.0), ZoVariant(2.5)}));

  EXPECT_EQ(arrayOf(VT_R8, {{4, 0}})->back().entries(), 4u);
  EXPECT_EQ(arrayOf(VT_R8, {{3, 0}})->back(), ZoVariant(ZoPoint()));
  EXPECT_EQ(arrayOf(VT_UI1, {{0, 0}})->back(), ZoVariant(Array{}));
  EXPECT_EQ(arrayOf(VT_I4, {{1'000'000'000, 0}, {0, 0}})->back(), ZoVariant(Array{}))
      << "rows of nothing";
  // Two columns, but no texts in the first, or one twice: no dictionary.
  const auto table = arrayOf(VT_VARIANT, {{2, 0}, {2, 0}});
  EXPECT_EQ(table->back(), ZoVariant(Array{ZoVariant(Array{{}, {}}), ZoVariant(Array{{}, {}})}));
  for (LONG row = 0; row < 2; ++row) {
    LONG at[] = {row, 0};
    VARIANT text;
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(row == 0 ? L"key" : L"KEY");
    ASSERT_EQ(SafeArrayPutElement(table->value.parray, at, &text), S_OK);
    VariantClear(&text);
  }
  EXPECT_EQ(table->back().type(), ZoVariant::kSequence);
}

ULONG referencesTo(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

TEST(OleVariant, InterfacesAreCountedByAutomationOnly) {
  ICreateErrorInfo* object = nullptr;
  ASSERT_EQ(CreateErrorInfo(&object), S_OK);
  const ZoVariant value(static_cast<void*>(static_cast<IUnknown*>(object)), ZoTypeCode::Unknown);
  {
    const Ole ole(value);
    EXPECT_EQ(ole.value.vt, VT_UNKNOWN);
    EXPECT_EQ(referencesTo(object), 2u);
    EXPECT_EQ(ole.back(), value);
    EXPECT_EQ(referencesTo(object), 2u);
  }
  EXPECT_EQ(object->Release(), 0u);
  const ZoVariant none(static_cast<void*>(nullptr), ZoTypeCode::Dispatch);
  EXPECT_EQ(Ole(none).back(), none);
}

}  // namespace
