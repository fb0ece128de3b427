// The variant as a value: kinds, codes, flags, references, copies, comparison, elements.
#include <gtest/gtest.h>
#include <zo/names/file_name.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "variant/variant_printers.h"

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;
using List = ZoList<ZoVariant>;

ZoTypeCode code(unsigned int value) { return static_cast<ZoTypeCode>(value); }

// One value of every kind.
std::vector<ZoVariant> everyKind() {
  static int target = 0;
  return {ZoVariant(),
          -5,
          std::int64_t{1} << 40,
          2.5,
          L"text",
          ZoVariant(static_cast<void*>(&target)),
          ZoPoint(1, 2, 3),
          ZoVector(4, 5, 6),
          Dict{{L"Key", 1}},
          Array{1, L"two"},
          _GUID{0xABCDEF01, 0xABCD, 0xEFAB, {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 7, 24}}};
}

TEST(Variant, EachKindHasItsNumberAndTheBaseCodeUnlessAnotherFits) {
  const unsigned int base[] = {0x2000, 0x2100, 0x2200, 0x2300, 0x2400, 0x2900,
                               0x2500, 0x2600, 0x2800, 0x2700, 0x22FF};
  const std::vector<ZoVariant> values = everyKind();
  for (unsigned int kind = 0; kind <= 10; ++kind) {
    const auto type = static_cast<ZoVariant::Type>(kind);
    EXPECT_EQ(values[kind].type(), type);
    EXPECT_EQ(values[kind].code(), code(base[kind]));
    for (const unsigned int given : {0x2000u, 0x2104u, 0x2201u, 0x22FFu, 0x2301u, 0x2401u, 0x2500u,
                                     1013u, 0x2702u, 0x2802u, 0x2A00u, 0u, 7u}) {
      const unsigned int group = static_cast<unsigned int>(ZoType::baseCode(code(given)));
      const bool fits = given == 0x2000 || kind == 0 || group == base[kind] ||
                        (kind == ZoVariant::kString && group == 0x2800);
      EXPECT_EQ(ZoVariant(type, code(given)).code(), code(fits ? given : 0)) << kind << given;
      ZoVariant set(type);
      EXPECT_EQ(set.setCode(code(given)), fits ? 0 : 1);
      EXPECT_EQ(set.code(), code(fits ? given : base[kind]));
    }
  }
}

TEST(Variant, LiesInMemoryAsCodeWordAndPayload) {
  struct {
    unsigned int code, word;
    double* payload;
  } raw;
  static_assert(sizeof raw == sizeof(ZoVariant));
  double target = 1.5;
  const ZoVariant reference(&target, ZoTypeCode::Length, 0xFC008001);  // 26 bits of flags
  std::memcpy(&raw, static_cast<const void*>(&reference), sizeof raw);
  EXPECT_EQ(raw.code, 0x2301u);
  EXPECT_EQ(raw.word, 3u | 0x20u | 0x8001u << 6);
  EXPECT_EQ(raw.payload, &target);
}

TEST(Variant, AReferenceReadsAndWritesTheCallersVariable) {
  int i = 1;
  std::int64_t b = 2;
  double d = 3.5;
  for (const ZoVariant& original : {ZoVariant(&i), ZoVariant(&b), ZoVariant(&d)}) {
    ZoVariant copy = original;
    EXPECT_EQ(copy.set(L" 42 "), 0);
    EXPECT_EQ(original.asInt(), 42) << "a copy refers to the same variable";
    copy = 43;
    EXPECT_EQ(copy.set(ZoPoint()), 1);
    copy = ZoPoint();
    EXPECT_EQ(original.asInt(), 43) << "refused";
    copy = ZoVariant(7);
    EXPECT_FALSE(copy.isReference()) << "becoming another value does not write";
  }
  EXPECT_TRUE(i == 43 && b == 43 && d == 43);
  const ZoVariant none(static_cast<wchar_t**>(nullptr));
  EXPECT_FALSE(none.isReference() || none.isEmpty()) << "a plain empty text";
}

TEST(Variant, ReferenceTextsAreNewEachTimeAndBelongToTheCaller) {
  wchar_t literal[] = L"first";
  wchar_t* text = literal;
  ZoVariant reference(&text, ZoTypeCode::Path, 0x4);
  EXPECT_EQ(reference.set(reference), 0) << "from itself";
  const std::unique_ptr<wchar_t[]> second(text);
  reference = L"third";
  const std::unique_ptr<wchar_t[]> third(text);
  EXPECT_STREQ(second.get(), L"first");
  EXPECT_STREQ(literal, L"first");
  text = nullptr;
  EXPECT_EQ(reference.asString(L"x"), L"") << "a null text is empty";
}

TEST(Variant, CopiesAreDeepAndMovesLeaveADefaultVariant) {
  for (const ZoVariant& value : everyKind()) {
    ZoVariant flagged = value;
    flagged.setFlags(0x44);
    ZoVariant copy = flagged;
    ZoVariant moved = std::move(copy);
    EXPECT_EQ(moved, flagged);
    EXPECT_EQ(copy, ZoVariant());  // NOLINT(bugprone-use-after-move)
    copy = std::move(moved);
    ZoVariant& self = copy;
    copy = self;
    copy = std::move(self);
    EXPECT_EQ(copy, flagged);
  }
  const ZoVariant tree(Array{Array{1}, List{L"t"}});
  ZoVariant copy = tree;
  EXPECT_NE(dynamic_cast<const List*>(copy.at(1u)->asSequence()), nullptr) << "lists stay lists";
  EXPECT_EQ(copy, ZoVariant(Array{Array{1}, Array{L"t"}})) << "and equal arrays";
  *copy.find(L"0/0") = 2;
  EXPECT_EQ(tree.find(L"0/0")->asInt(), 1);
}

TEST(Variant, AContainerHoldsACopyOfItselfAtMost) {
  ZoVariant dict(ZoVariant::kDict);
  for (unsigned int depth = 1; depth < 12; ++depth) {
    EXPECT_EQ(dict.asDict()->put(L"self", dict), 0);
    unsigned int found = 0;
    for (const ZoVariant* at = &dict; (at = at->at(L"self")) != nullptr;) ++found;
    EXPECT_EQ(found, depth);
  }
  for (ZoVariant v : {ZoVariant(Array{}), ZoVariant(List{})}) {
    for (unsigned int n = 0; n < 10; ++n) {
      EXPECT_EQ(v.asSequence()->append(v), 0);
      EXPECT_EQ(v.at(n)->entries(), n);
    }
    v = ZoVariant(*v.at(3u));  // from its own element
    EXPECT_EQ(v.get(*v.asSequence()), 0);
    EXPECT_EQ(v.entries(), 3u);
  }
}

TEST(Variant, GivesItsContainerOrAScratchOneThatBelongsToNobody) {
  ZoVariant v(ZoVariant::kEmpty, ZoTypeCode::NoType, 4), number(5);
  EXPECT_EQ(static_cast<ZoVariant::Sequence&>(v).append(1), 0);
  EXPECT_EQ(v, ZoVariant(Array{1}, ZoTypeCode::Sequence, 4)) << "an empty one becomes it";
  EXPECT_EQ(static_cast<ZoVariant::Sequence&>(number).append(1), 0);
  EXPECT_TRUE(static_cast<ZoVariant::Sequence&>(number).isEmpty()) << "emptied each time";
  EXPECT_EQ(number, ZoVariant(5));
}

TEST(Variant, EqualMeansEverythingThatCanBeSeen) {
  const std::vector<ZoVariant> values = everyKind();
  for (size_t i = 0; i < values.size(); ++i) {
    for (size_t k = 0; k < values.size(); ++k) EXPECT_EQ(values[i] == values[k], i == k) << i << k;
    ZoVariant other = values[i];
    other.setFlags(1u);
    EXPECT_NE(other, values[i]);
    other.setFlags(0u);
    EXPECT_EQ(other.setCode(ZoTypeCode::NoType), 0);
    EXPECT_EQ(other == values[i], i == 0);
    EXPECT_TRUE(other.isEqualTo(values[i])) << "the code is no part of the value";
  }
  const ZoVariant dict(Dict{{L"x", 1}, {L"y", 2}});
  EXPECT_EQ(dict, ZoVariant(Dict{{L"Y", 2}, {L"X", 1}})) << "keys ignore case and order";
  EXPECT_NE(dict, ZoVariant(Dict{{L"x", 1}, {L"w", 2}})) << "as many, but not the same keys";
}

TEST(Variant, TolerantEqualityDecidesAtExactlyTheTolerance) {
  constexpr std::int64_t big = std::int64_t{1} << 60;
  struct Case {
    ZoVariant a, b;
    bool equal;
    ZoTol tol{0.5, 0.25};
  };
  for (const Case& c : std::vector<Case>{{1, 1.5, true},
                                         {big, big + 1, false},
                                         {big, big + 10, true, ZoTol(10, 0)},
                                         {INT64_MIN, INT64_MAX, false, ZoTol(1e19, 0)},
                                         {std::nan(""), std::nan(""), true},
                                         {HUGE_VAL, -HUGE_VAL, false},
                                         {ZoPoint(0, 0, 0), ZoPoint(0, 0.5, 0), true},
                                         {ZoVector(0, 0, 0), ZoVector(0, 0.25, 0), true},
                                         {ZoPoint(0, 0, 0), ZoVector(0, 0, 0), false},
                                         {Array{1.0}, Array{1.5}, true},
                                         {Array{1}, Array{}, false}}) {
    EXPECT_EQ(c.a.isEqualTo(c.b, c.tol), c.equal)
        << testing::PrintToString(c.a) << " " << testing::PrintToString(c.b);
    EXPECT_EQ(c.b.isEqualTo(c.a, c.tol), c.equal);
  }
}

TEST(Variant, PathsLeadToElementsAndMakeWhatIsMissing) {
  ZoVariant v;
  EXPECT_EQ(v.put(L"parts/bolt/length", 12.5), 0);
  EXPECT_EQ(v.put(L"parts/list", ZoVariant::kSequence), 0);
  for (const wchar_t* path : {L"parts/list/0", L"parts/list/1", L"parts/list/2/deep"}) {
    EXPECT_EQ(v.put(path, path), 0);
  }
  EXPECT_EQ(v.find(L"PARTS/Bolt/LENGTH")->asReal(), 12.5);
  const ZoVariant before = v;
  for (const wchar_t* nowhere : {L"parts/list/4", L"parts/list/-1", L"parts/list/4294967299",
                                 L"parts/list/", L"parts/bolt/length/x", L"parts/list/5/a/b"}) {
    EXPECT_EQ(v.find(nowhere), nullptr);
    EXPECT_TRUE(v.value(nowhere).isEmpty() && v.text(nowhere, L"other") == L"other");
    EXPECT_EQ(v.put(nowhere, 1), 1);
    EXPECT_EQ(v, before);
  }
  for (const wchar_t* key : {L"a/b", L"~", L"~1", L"", L"/", L"a~0b/"}) {
    const ZoString path = ZoString(L"parts/") + ZoVariant::pathStep(key);
    EXPECT_EQ(v.put(path, key), 0);
    EXPECT_EQ(v.at(L"parts")->at(std::wstring_view(key))->asString(), key);
    EXPECT_TRUE(v.find(path)->asString() == key && v.text(path, L"other") == key);
  }
}

TEST(Variant, TakesEachTypeAsItsNaturalKind) {
  const std::wstring text = L"text";
  const ZoString string(L"a text");
  for (const auto& [made, kind, code] :
       std::vector<std::tuple<ZoVariant, ZoVariant::Type, ZoTypeCode>>{
           {true, ZoVariant::kInt, ZoTypeCode::Bool},
           {static_cast<short>(-1), ZoVariant::kInt, ZoTypeCode::Int},
           {static_cast<unsigned char>(255), ZoVariant::kInt, ZoTypeCode::Int},
           {-1L, ZoVariant::kInt, ZoTypeCode::Int},
           {0xFFFFFFFFu, ZoVariant::kBigInt, ZoTypeCode::BigInt},
           {0xFFFFFFFFul, ZoVariant::kBigInt, ZoTypeCode::BigInt},
           {0.5f, ZoVariant::kReal, ZoTypeCode::Real},
           {text, ZoVariant::kString, ZoTypeCode::String},
           {std::wstring_view(text), ZoVariant::kString, ZoTypeCode::String},
           {string(2, 4), ZoVariant::kString, ZoTypeCode::String},
           {ZoFileName(text), ZoVariant::kString, ZoTypeCode::FName}}) {
    EXPECT_EQ(made.type(), kind) << testing::PrintToString(made);
    EXPECT_EQ(made.code(), code) << testing::PrintToString(made);
    EXPECT_EQ(made.asString(), kind == ZoVariant::kString ? L"text" : made.asString());
    EXPECT_EQ(made.asBigInt(), kind == ZoVariant::kBigInt ? 0xFFFFFFFF : made.asBigInt());
  }
  ZoVariant dict;
  EXPECT_EQ(dict.put(L"real", 0.25), 0);
  EXPECT_EQ(dict.put(L"number", 0xFFFFFFFFu), 0);
  EXPECT_EQ(dict.value(L"real"), ZoVariant(0.25));
  *dict.at(L"number") = 0.25;
  EXPECT_EQ(dict.value(L"number"), ZoVariant(0.25));
}

TEST(Variant, ElementsAreMovedOut) {
  for (ZoVariant v : {ZoVariant(Array{L"x", 2}, ZoTypeCode::Array, 4),
                      ZoVariant(List{L"x", 2}, ZoTypeCode::Array, 4)}) {
    EXPECT_TRUE(v.takeDict().isEmpty());
    EXPECT_EQ(ZoVariant(v.takeArray()), ZoVariant(Array{L"x", 2}));
    EXPECT_EQ(v, ZoVariant(Array{}, ZoTypeCode::Array, 4));
    EXPECT_EQ(v.asSequence()->append(1), 0);
  }
  ZoVariant v(Dict{{L"x", 1}});
  EXPECT_TRUE(v.takeArray().isEmpty());
  EXPECT_EQ(ZoVariant(v.takeDict()), ZoVariant(Dict{{L"X", 1}}));
  EXPECT_EQ(v, ZoVariant(Dict{}));
  EXPECT_EQ(v.asDict()->put(L"y", 1), 0);
}

// Where a text lies; of a dictionary, where the first key does.
const void* textOf(const ZoVariant& value) {
  const bool isDict = value.isTypeOf(ZoVariant::kDict);
  return isDict ? (*value.elements().begin()).key->data() : value.asString().data();
}

TEST(Variant, AnotherThreadMayHaveACopy) {
  int target = 7;
  const ZoVariant tree(Dict{{L"list", List{ZoString(L"text"), Dict{{L"key", L"text"}}}},
                            {L"array", Array{L"text", 1.5, _GUID{}}},
                            {L"other", ZoVariant(&target, ZoTypeCode::Long, 4)}});
  const ZoVariant copy = tree.copy();
  EXPECT_EQ(copy, tree);
  EXPECT_FALSE(copy.value(L"other").isReference());
  for (const wchar_t* path : {L"", L"list/0", L"list/1", L"list/1/key", L"array/0"})
    EXPECT_NE(textOf(copy.value(path)), textOf(tree.value(path))) << testing::PrintToString(path);
  const auto work = [](const ZoVariant& mine) {
    for (int i = 0; i < 200; ++i) {
      ZoVariant second = mine;
      *second.find(L"array/0") = L"changed";
    }
  };
  std::thread other(work, std::cref(copy));
  work(tree);
  other.join();
  EXPECT_EQ(copy, tree);
}

TEST(Variant, TextsKeepZeroCharactersAndThoseOfPointersRefuseThem) {
  const std::wstring_view text(L"a\0b", 3);
  ZoVariant set(L""), back, dict;
  EXPECT_EQ(set.set(text), 0);
  for (const ZoVariant& value : {ZoVariant(text), ZoVariant(ZoString(text)), set, set.copy()}) {
    EXPECT_EQ(value.asString().view(), text);
    EXPECT_NE(value, ZoVariant(L"a"));
    EXPECT_FALSE(value.isEqualTo(ZoVariant(L"a")));
    EXPECT_EQ(back.parse(value.format()), 0);
    EXPECT_EQ(back, value);
  }
  EXPECT_EQ(dict.put(text, 1), 0);
  EXPECT_EQ(dict.put(L"a", 2), 0);
  EXPECT_EQ(dict.value(text), ZoVariant(1));
  wchar_t literal[] = L"stays";
  wchar_t* variable = literal;
  EXPECT_EQ(ZoVariant(&variable).set(text), 1);
  EXPECT_EQ(variable, literal);
}

}  // namespace
