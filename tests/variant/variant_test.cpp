// The variant as a value: kinds, codes, flags, references, copies, comparison, elements.
#include <gtest/gtest.h>
#include <zo/variant/variant.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "variant/variant_printers.h"

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;
using List = ZoList<ZoVariant>;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

static_assert(std::is_nothrow_move_constructible_v<ZoVariant>);
static_assert(std::is_nothrow_move_assignable_v<ZoVariant>);
static_assert(!std::is_constructible_v<ZoVariant, const char*>);

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
    for (const ZoVariant& v : {values[kind], ZoVariant(type)}) {
      EXPECT_EQ(v.type(), type);
      EXPECT_EQ(v.code(), code(base[kind]));
      EXPECT_EQ(v.flags(), 0u);
      EXPECT_EQ(v.isNumber(), kind >= 1 && kind <= 3);
    }
    EXPECT_EQ(ZoVariant(type).entries(), 0u);
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
  EXPECT_EQ(ZoVariant(5, ZoTypeCode::Length).code(), code(0));
  EXPECT_EQ(ZoVariant(L"DIN", ZoTypeCode::Catalog).code(), ZoTypeCode::Catalog);
}

TEST(Variant, LiesInMemoryAsCodeWordAndPayload) {
  struct Raw {
    unsigned int code, word;
    std::uint64_t payload;
  } raw;
  static_assert(sizeof raw == sizeof(ZoVariant));
  double target = 1.5;
  ZoVariant reference(&target, ZoTypeCode::Length, 0xFFFFFFFF);
  EXPECT_EQ(reference.flags(), 0x3FFFFFFu) << "26 bits";
  reference.resetFlag(0x3FFFFFF & ~0x8001u);
  EXPECT_TRUE(reference.isFlagged(0x3) && !reference.isFlagged(0x2));
  std::memcpy(static_cast<void*>(&raw), static_cast<const void*>(&reference), sizeof raw);
  EXPECT_EQ(raw.code, 0x2301u);
  EXPECT_EQ(raw.word, 3u | 0x20u | 0x8001u << 6);
  EXPECT_EQ(raw.payload, reinterpret_cast<std::uint64_t>(&target));
  EXPECT_EQ(reference.typeWord(), raw.word);
  ZoString letters(L"B");
  reference.setFlags(letters);
  EXPECT_EQ(reference, ZoVariant(1.5, ZoTypeCode::Length, 2));
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
    EXPECT_TRUE(copy.isReference() && copy.isTypeOf(original.type()));
    copy = ZoVariant(7);
    EXPECT_FALSE(copy.isReference()) << "becoming another value does not write";
  }
  EXPECT_TRUE(i == 43 && b == 43 && d == 43);
  EXPECT_EQ(ZoVariant(&d), ZoVariant(43.0));
}

TEST(Variant, ReferenceTextsAreNewEachTimeAndBelongToTheCaller) {
  wchar_t literal[] = L"first";
  wchar_t* text = literal;
  ZoVariant reference(&text, ZoTypeCode::Path, 0x4);
  EXPECT_EQ(reference.set(reference), 0) << "from itself";
  EXPECT_NE(text, literal);
  const std::unique_ptr<wchar_t[]> second(text);
  reference = L"third";
  const std::unique_ptr<wchar_t[]> third(text);
  EXPECT_STREQ(second.get(), L"first");
  EXPECT_STREQ(third.get(), L"third");
  EXPECT_STREQ(literal, L"first");
  EXPECT_EQ(reference, ZoVariant(L"third", ZoTypeCode::Path, 0x4));
  EXPECT_EQ(ZoVariant(reference).asString(), L"third") << "a copy refers to the same variable";
  text = nullptr;
  EXPECT_EQ(reference.asString(L"x"), L"") << "a null text is empty";
}

TEST(Variant, ANullPointerMakesAPlainZeroValue) {
  for (const ZoVariant& v :
       {ZoVariant(static_cast<int*>(nullptr)), ZoVariant(static_cast<std::int64_t*>(nullptr)),
        ZoVariant(static_cast<double*>(nullptr)), ZoVariant(static_cast<wchar_t**>(nullptr)),
        ZoVariant(static_cast<const wchar_t*>(nullptr))}) {
    EXPECT_FALSE(v.isReference() || v.isEmpty());
    ZoVariant other = v;
    EXPECT_EQ(other.asString(L"x"), v.isNumber() ? L"0" : L"");
    other = 5;
    EXPECT_EQ(other.asInt(), 5);
  }
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
    ZoVariant other(L"other");
    swap(copy, other);
    EXPECT_EQ(other, flagged);
    EXPECT_EQ(copy.asString(), L"other");
    other.clear();
    EXPECT_EQ(other, ZoVariant());
  }
  const ZoVariant tree(Array{Array{1}, List{L"t"}});
  ZoVariant copy = tree;
  EXPECT_NE(dynamic_cast<const List*>(copy.at(1u)->asSequence()), nullptr) << "lists stay lists";
  EXPECT_EQ(copy, ZoVariant(Array{Array{1}, Array{L"t"}})) << "and equal arrays";
  *copy.find(L"0/0") = 2;
  *copy.at(1u) = L"changed";
  EXPECT_EQ(tree.find(L"0/0")->asInt(), 1);
  EXPECT_EQ(tree.find(L"1/0")->asString(), L"t");
  Dict dict{{L"a", 1}};  // stays the caller's
  const ZoVariant ofDict(dict);
  dict.removeAll();
  EXPECT_EQ(ofDict.at(L"A")->asInt(), 1);
}

TEST(Variant, AContainerHoldsACopyOfItselfAtMost) {
  ZoVariant dict(ZoVariant::kDict);
  for (unsigned int depth = 1; depth < 12; ++depth) {
    EXPECT_EQ(dict.asDict()->put(L"self", dict), 0);
    unsigned int found = 0;
    for (const ZoVariant* at = &dict; (at = at->at(L"self")) != nullptr;) ++found;
    EXPECT_EQ(found, depth);
  }
  EXPECT_EQ(dict.put(L"self", std::move(dict)), 0);
  EXPECT_EQ(dict.entries(), 1u);  // NOLINT(bugprone-use-after-move): it took itself as a value

  ZoVariant list(ZoVariant::kSequence, ZoTypeCode::List);
  ZoVariant array(ZoVariant::kSequence);
  for (ZoVariant* v : {&list, &array}) {
    for (unsigned int n = 0; n < 10; ++n) {
      EXPECT_EQ(v->asSequence()->append(*v), 0);
      EXPECT_EQ(v->at(n)->entries(), n);
    }
    EXPECT_EQ(v->asSequence()->append(*v->asSequence()), 0) << "its own elements again";
    EXPECT_EQ(*v->at(19u), *v->at(9u));
    *v = ZoVariant(*v->at(3u));  // from its own element
    EXPECT_EQ(v->get(*v->asSequence()), 0);
    EXPECT_EQ(v->entries(), 3u);
  }
  EXPECT_NE(dynamic_cast<const List*>(list.asSequence()), nullptr);
  ZoVariant holder(ZoVariant::kDict);
  holder.put(L"a/b", 1);
  EXPECT_EQ(holder.at(L"a")->get(*holder.asDict()), 0) << "into the dictionary that holds it";
  EXPECT_EQ(holder.at(L"b")->asInt(), 1);
}

TEST(Variant, GivesItsContainerOrAScratchOneThatBelongsToNobody) {
  const auto sequenceOf = [](ZoVariant& v) -> ZoVariant::Sequence& { return v; };
  const auto dictOf = [](ZoVariant& v) -> ZoVariant::Dict& { return v; };
  ZoVariant v;
  v.setFlags(4u);
  sequenceOf(v).append(1);
  EXPECT_EQ(v, ZoVariant(Array{1}, ZoTypeCode::Sequence, 4)) << "an empty one becomes it";
  EXPECT_EQ(dictOf(v).put(L"x", v), 0);
  EXPECT_TRUE(dictOf(v).isEmpty()) << "emptied each time";
  ZoVariant number(5);
  sequenceOf(number).append(1);
  EXPECT_TRUE(sequenceOf(number).isEmpty());
  EXPECT_EQ(number, ZoVariant(5));
  EXPECT_TRUE(static_cast<const ZoVariant::Dict&>(std::as_const(number)).isEmpty());
  EXPECT_EQ(static_cast<const ZoVariant::Sequence&>(std::as_const(v)).entries(), 1u);
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
  EXPECT_EQ(ZoVariant(ZoPoint(kNaN, kInf, 0)), ZoVariant(ZoPoint(kNaN, kInf, 0)));
  EXPECT_NE(ZoVariant(ZoPoint(0, 0, 0)), ZoVariant(ZoPoint(0, 0, 1e-12)));
  EXPECT_NE(ZoVariant(1), ZoVariant(1.0));
  const ZoVariant dict(Dict{{L"x", 1}, {L"y", 2}});
  EXPECT_EQ(dict, ZoVariant(Dict{{L"Y", 2}, {L"X", 1}})) << "keys ignore case and order";
  EXPECT_NE(dict, ZoVariant(Dict{{L"x", 1}}));
  EXPECT_NE(ZoVariant(Dict{{L"x", 1}}), dict);
  EXPECT_NE(dict, ZoVariant(Dict{{L"x", 1}, {L"w", 2}})) << "as many, but not the same keys";
}

TEST(Variant, TolerantEqualityDecidesAtExactlyTheTolerance) {
  constexpr std::int64_t big = std::int64_t{1} << 60;
  struct Case {
    ZoVariant a, b;
    bool equal;
    ZoTol tol{0.5, 0.25};
  };
  for (const Case& c : std::vector<Case>{{1.0, 1.5, true},
                                         {1.0, 1.5000001, false},
                                         {1, 1.5, true},
                                         {1, 2, false},
                                         {big, big + 1, false},
                                         {big, big + 10, true, ZoTol(10, 0)},
                                         {big, big + 11, false, ZoTol(10, 0)},
                                         {INT64_MIN, INT64_MAX, false, ZoTol(1e19, 0)},
                                         {std::int64_t{7}, 7, true},
                                         {kNaN, kNaN, true},
                                         {kNaN, 0.0, false},
                                         {kInf, kInf, true},
                                         {kInf, -kInf, false},
                                         {ZoPoint(0, 0, 0), ZoPoint(0, 0.5, 0), true},
                                         {ZoPoint(0, 0, 0), ZoPoint(0, 0.5000001, 0), false},
                                         {ZoPoint(kNaN, 0, 0), ZoPoint(kNaN, 0, 0), true},
                                         {ZoVector(0, 0, 0), ZoVector(0, 0.25, 0), true},
                                         {ZoVector(0, 0, 0), ZoVector(0, 0.2500001, 0), false},
                                         {ZoPoint(0, 0, 0), ZoVector(0, 0, 0), false},
                                         {L"a", L"A", false},
                                         {1, L"1", false},
                                         {Array{1.0}, Array{1.5}, true},
                                         {Array{1.0}, Array{1.6}, false},
                                         {Array{1}, Array{}, false}}) {
    EXPECT_EQ(c.a.isEqualTo(c.b, c.tol), c.equal)
        << testing::PrintToString(c.a) << " " << testing::PrintToString(c.b);
    EXPECT_EQ(c.b.isEqualTo(c.a, c.tol), c.equal);
  }
}

TEST(Variant, AssignedValuesKeepFlagsAndTheCodeOfTheSameKind) {
  ZoVariant v(1.5, ZoTypeCode::Length, 0x8004);
  v = 2.5;
  EXPECT_EQ(v, ZoVariant(2.5, ZoTypeCode::Length, 0x8004));
  v = L"text";
  EXPECT_EQ(v, ZoVariant(L"text", ZoTypeCode::String, 0x8004));
  const ZoVariant text = v;
  v = Array{v};
  EXPECT_EQ(v, ZoVariant(Array{text}, ZoTypeCode::Sequence, 0x8004));
}

TEST(Variant, ElementsOfEveryContainerAreWalkedAndCanBeChanged) {
  ZoVariant dict(Dict{{L"b", 1}, {L"a", 2}});
  for (const auto [key, position, value] : dict.elements()) value = value.asInt() + 10;
  unsigned int count = 0;
  for (const auto [key, position, value] : std::as_const(dict).elements()) {
    EXPECT_EQ(dict.at(key->view()), &value);
    EXPECT_EQ(position, count++);
  }
  EXPECT_EQ(dict, ZoVariant(Dict{{L"b", 11}, {L"a", 12}}));
  for (ZoVariant sequence : {ZoVariant(Array{0, 1}), ZoVariant(List{0, 1})}) {
    for (const auto [key, position, value] : sequence.elements()) {
      EXPECT_EQ(key, nullptr);
      EXPECT_EQ(value.asInt(), static_cast<int>(position));
      value = L"seen";
    }
    EXPECT_EQ(sequence, ZoVariant(Array{L"seen", L"seen"}));
  }
  for (const ZoVariant& none : {ZoVariant(), ZoVariant(5), ZoVariant(ZoVariant::kDict)})
    EXPECT_TRUE(none.elements().begin() == none.elements().end());
}

TEST(Variant, PathsLeadToElementsAndMakeWhatIsMissing) {
  ZoVariant v;
  v.setFlags(4u);
  EXPECT_EQ(v.put(L"parts/bolt/length", 12.5), 0);
  EXPECT_EQ(v.flags(), 4u);
  EXPECT_EQ(v.put(L"parts/list", ZoVariant::kSequence), 0);
  for (const wchar_t* path : {L"parts/list/0", L"parts/list/1", L"parts/list/2/deep"}) {
    EXPECT_EQ(v.put(path, path), 0);
    EXPECT_EQ(v.find(path)->asString(), path);
  }
  EXPECT_EQ(v.put(L"parts/list/0", 7), 0);
  EXPECT_EQ(v.find(L"parts/list/0")->asInt(), 7);
  EXPECT_EQ(v.find(L"PARTS/Bolt/LENGTH")->asReal(), 12.5);
  EXPECT_EQ(v.find(L""), &v);
  const ZoVariant before = v;
  for (const wchar_t* nowhere :
       {L"parts/list/3x", L"parts/list/4", L"parts/list/-1", L"parts/list/4294967299",
        L"parts/list/", L"parts/bolt/length/x", L"parts/list/0/1", L"parts/list/5/a/b"}) {
    EXPECT_EQ(v.find(nowhere), nullptr);
    EXPECT_EQ(v.put(nowhere, 1), 1);
    EXPECT_EQ(v, before);
  }
  for (const wchar_t* missing : {L"x", L"parts//bolt", L"/parts", L"parts/"})
    EXPECT_EQ(v.find(missing), nullptr);
  for (const wchar_t* key : {L"a/b", L"~", L"~1", L"", L"/", L"a~0b/"}) {
    const ZoString path = ZoString(L"parts/") + ZoVariant::pathStep(key);
    EXPECT_EQ(v.put(path, key), 0);
    EXPECT_EQ(v.at(L"parts")->at(std::wstring_view(key))->asString(), key);
    EXPECT_EQ(v.find(path)->asString(), key);
  }
  EXPECT_EQ(v.put(L"", 1), 0);
  EXPECT_EQ(v, ZoVariant(1));
  EXPECT_TRUE(v.at(L"x") == nullptr && v.at(0u) == nullptr);
}

}  // namespace
