// The variant as a value: kinds, codes, flags, references, copies, comparison.
#include <gtest/gtest.h>
#include <zo/variant/variant.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
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
constexpr _GUID kGuid = {0xABCDEF01, 0xABCD, 0xEFAB, {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 7, 24}};

static_assert(std::is_nothrow_move_constructible_v<ZoVariant>);
static_assert(std::is_nothrow_move_assignable_v<ZoVariant>);
static_assert(!std::is_constructible_v<ZoVariant, const char*>);

ZoTypeCode code(unsigned int value) { return static_cast<ZoTypeCode>(value); }

// One value of every kind.
std::vector<ZoVariant> everyKind() {
  Dict dict;
  dict.insertAt(L"Key", ZoVariant(1));
  Array array{ZoVariant(1), ZoVariant(L"two")};
  static int target = 0;
  return {ZoVariant(),
          ZoVariant(-5),
          ZoVariant(std::int64_t{1} << 40),
          ZoVariant(2.5),
          ZoVariant(L"text"),
          ZoVariant(static_cast<void*>(&target)),
          ZoVariant(ZoPoint(1, 2, 3)),
          ZoVariant(ZoVector(4, 5, 6)),
          ZoVariant(dict),
          ZoVariant(array),
          ZoVariant(kGuid)};
}

TEST(Variant, EachKindHasItsNumberAndTheBaseCodeUnlessToldOtherwise) {
  const unsigned int base[] = {0x2000, 0x2100, 0x2200, 0x2300, 0x2400, 0x2900,
                               0x2500, 0x2600, 0x2800, 0x2700, 0x22FF};
  const std::vector<ZoVariant> values = everyKind();
  for (unsigned int kind = 0; kind <= 10; ++kind) {
    const auto type = static_cast<ZoVariant::Type>(kind);
    EXPECT_EQ(values[kind].type(), type);
    EXPECT_EQ(values[kind].code(), code(base[kind]));
    const ZoVariant zero(type);
    EXPECT_EQ(zero.type(), type);
    EXPECT_EQ(zero.code(), code(base[kind]));
    EXPECT_EQ(zero.flags(), 0u);
    EXPECT_EQ(zero.isEmpty(), kind == 0);
    EXPECT_EQ(zero.isNumber(), kind >= 1 && kind <= 3);
    EXPECT_TRUE(zero.isTypeOf(type));
    EXPECT_FALSE(zero.isReference());
    EXPECT_EQ(zero.entries(), 0u);

    // Every code with every kind.
    for (const unsigned int given : {0x2000u, 0x2104u, 0x2201u, 0x22FFu, 0x2301u, 0x2401u, 0x2500u,
                                     1013u, 0x2702u, 0x2802u, 0x2A00u, 0u, 7u}) {
      const unsigned int group = static_cast<unsigned int>(ZoType::baseCode(code(given)));
      const bool fits = given == 0x2000 || kind == 0 || group == base[kind] ||
                        (kind == ZoVariant::kString && group == 0x2800);
      const ZoVariant made(type, code(given), 0x4);
      EXPECT_EQ(made.code(), code(fits ? given : 0)) << kind << " " << given;
      EXPECT_EQ(made.flags(), 0x4u);
      ZoVariant set(type);
      EXPECT_EQ(set.setCode(code(given)), fits ? 0 : 1);
      EXPECT_EQ(set.code(), code(fits ? given : base[kind]));
    }
  }
  EXPECT_EQ(ZoVariant(5, ZoTypeCode::Length).code(), code(0));
  EXPECT_EQ(ZoVariant(5, ZoTypeCode::Access).code(), ZoTypeCode::Access);
  EXPECT_EQ(ZoVariant(L"DIN", ZoTypeCode::Catalog).code(), ZoTypeCode::Catalog);
  EXPECT_EQ(ZoVariant(true).type(), ZoVariant::kInt);
}

TEST(Variant, LiesInMemoryAsCodeWordAndPayload) {
  const auto words = [](const ZoVariant& v) {
    struct Raw {
      unsigned int code, word;
      std::uint64_t payload;
    } raw;
    static_assert(sizeof raw == sizeof v);
    std::memcpy(static_cast<void*>(&raw), static_cast<const void*>(&v), sizeof raw);
    return raw;
  };
  double target = 1.5;
  const ZoVariant value(7, ZoTypeCode::Bool, 0x8001);
  EXPECT_EQ(words(value).code, 0x2103u);
  EXPECT_EQ(words(value).word, 1u | 0x8001u << 6);
  EXPECT_EQ(words(value).payload & 0xFFFFFFFF, 7u);
  const ZoVariant reference(&target, ZoTypeCode::Length, 0x3FFFFFF);
  EXPECT_EQ(words(reference).word, 3u | 0x20u | 0xFFFFFFC0u);
  EXPECT_EQ(words(reference).payload, reinterpret_cast<std::uint64_t>(&target));
  EXPECT_EQ(reference.typeWord(), words(reference).word);
}

TEST(Variant, FlagsAreKeptApartFromEverythingElse) {
  for (const ZoVariant& value : everyKind()) {
    ZoVariant v = value;
    v.setFlags(0xFFFFFFFF);
    EXPECT_EQ(v.flags(), 0x3FFFFFFu) << "26 bits";
    EXPECT_EQ(v.type(), value.type());
    EXPECT_FALSE(v.isReference());
    v.resetFlag(0x3FFFFFF & ~0x8001u);
    EXPECT_EQ(v.flags(), 0x8001u);
    EXPECT_TRUE(v.isFlagged(0x3));
    EXPECT_FALSE(v.isFlagged(0x2));
    ZoString letters(L"B");
    v.setFlags(letters);
    EXPECT_EQ(v.flags(), 2u);
    v.setFlags(0u);
    EXPECT_EQ(v, value);
  }
}

TEST(Variant, AReferenceReadsAndWritesTheCallersVariable) {
  int i = 1;
  std::int64_t b = 2;
  double d = 3.5;
  wchar_t* text = nullptr;
  const std::vector<ZoVariant> references = {ZoVariant(&i), ZoVariant(&b), ZoVariant(&d),
                                             ZoVariant(&text)};
  for (const ZoVariant& original : references) {
    EXPECT_TRUE(original.isReference());
    ZoVariant copy = original;
    EXPECT_TRUE(copy.isReference()) << "a copy refers to the same variable";
    EXPECT_EQ(copy.set(L" 42 "), 0);
    EXPECT_EQ(original.asInt(), 42);
    copy = 43;
    EXPECT_EQ(original.asInt(), 43);
    EXPECT_EQ(copy.type(), original.type());
    EXPECT_TRUE(copy.isReference());
    EXPECT_EQ(copy.set(ZoPoint()), original.isTypeOf(ZoVariant::kString) ? 0 : 1);
    // Becoming another value does not write.
    const ZoString before = original.asString();
    copy = ZoVariant(7);
    EXPECT_FALSE(copy.isReference());
    EXPECT_EQ(original.asString(), before);
    if (original.isTypeOf(ZoVariant::kString)) break;
  }
  EXPECT_EQ(i, 43);
  EXPECT_EQ(b, 43);
  EXPECT_EQ(d, 43);
  EXPECT_STREQ(text, L"(0, 0, 0)");
  delete[] text;
  text = nullptr;
  EXPECT_EQ(references[3].asString(L"x"), L"") << "a null text is empty";
  d = 0.25;
  EXPECT_EQ(references[2], ZoVariant(0.25));
  EXPECT_EQ(ZoVariant(references[2]).asReal(), 0.25);
}

TEST(Variant, ReferenceTextsAreNewEachTimeAndBelongToTheCaller) {
  wchar_t literal[] = L"first";
  wchar_t* text = literal;
  ZoVariant reference(&text, ZoTypeCode::Path, 0x4);
  EXPECT_EQ(reference.asString(), L"first");
  EXPECT_EQ(reference.set(reference), 0) << "from itself";
  EXPECT_NE(text, literal);
  const std::unique_ptr<wchar_t[]> second(text);
  reference = L"third";
  const std::unique_ptr<wchar_t[]> third(text);
  EXPECT_STREQ(second.get(), L"first");
  EXPECT_STREQ(third.get(), L"third");
  EXPECT_STREQ(literal, L"first");
  EXPECT_EQ(reference.code(), ZoTypeCode::Path);
  EXPECT_EQ(reference.flags(), 0x4u);
}

TEST(Variant, ANullPointerMakesAPlainZeroValue) {
  for (const ZoVariant& v :
       {ZoVariant(static_cast<int*>(nullptr), ZoTypeCode::Bool, 4),
        ZoVariant(static_cast<std::int64_t*>(nullptr)), ZoVariant(static_cast<double*>(nullptr)),
        ZoVariant(static_cast<wchar_t**>(nullptr)),
        ZoVariant(static_cast<const wchar_t*>(nullptr))}) {
    EXPECT_FALSE(v.isReference());
    EXPECT_FALSE(v.isEmpty());
    ZoVariant other = v;
    EXPECT_EQ(other.asString(L"x"), v.isNumber() ? L"0" : L"");
    other = 5;
    EXPECT_EQ(other.asInt(), 5);
  }
  EXPECT_EQ(ZoVariant(static_cast<void*>(nullptr)).asPointer(&std::cout), nullptr);
}

TEST(Variant, CopiesAreDeepAndMovesLeaveADefaultVariant) {
  for (const ZoVariant& value : everyKind()) {
    ZoVariant flagged = value;
    flagged.setFlags(0x44);
    ZoVariant copy = flagged;
    EXPECT_EQ(copy, flagged);
    ZoVariant moved = std::move(copy);
    EXPECT_EQ(moved, flagged);
    EXPECT_EQ(copy, ZoVariant());  // NOLINT(bugprone-use-after-move)
    copy = std::move(moved);
    EXPECT_EQ(copy, flagged);
    ZoVariant& self = copy;
    copy = self;
    EXPECT_EQ(copy, flagged);
    copy = std::move(self);
    EXPECT_EQ(copy, flagged);
    ZoVariant other(L"other");
    swap(copy, other);
    EXPECT_EQ(other, flagged);
    EXPECT_EQ(copy.asString(), L"other");
    other.clear();
    EXPECT_EQ(other, ZoVariant());
  }
  ZoVariant tree(Array{ZoVariant(Array{ZoVariant(1)}), ZoVariant(L"t")});
  ZoVariant copy = tree;
  *copy.find(L"0/0") = 2;
  *copy.at(1u) = L"changed";
  EXPECT_EQ(tree.find(L"0/0")->asInt(), 1);
  EXPECT_EQ(tree.at(1u)->asString(), L"t");
  // The containers that values are made of stay the caller's.
  Dict dict;
  dict.insertAt(L"a", ZoVariant(1));
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
  EXPECT_EQ(dict.put(L"self", dict), 0);
  EXPECT_EQ(dict.put(L"self", std::move(dict)), 0);
  EXPECT_EQ(dict.entries(), 1u);  // NOLINT(bugprone-use-after-move): it took itself as a value

  ZoVariant list(ZoVariant::kSequence, ZoTypeCode::List);
  ZoVariant array(ZoVariant::kSequence);
  for (ZoVariant* sequence : {&list, &array}) {
    for (unsigned int n = 0; n < 10; ++n) {
      EXPECT_EQ(sequence->asSequence()->append(*sequence), 0);
      EXPECT_EQ(sequence->entries(), n + 1);
      EXPECT_EQ(sequence->at(n)->entries(), n);
    }
    EXPECT_EQ(sequence->asSequence()->append(*sequence->asSequence()), 0)
        << "its own elements again";
    EXPECT_EQ(sequence->entries(), 20u);
    EXPECT_EQ(*sequence->at(19u), *sequence->at(9u));
    *sequence = ZoVariant(*sequence->at(3u));  // from its own element
    EXPECT_EQ(sequence->entries(), 3u);
    Array out;
    EXPECT_EQ(sequence->get(*sequence->asSequence()), 0);
    EXPECT_EQ(sequence->entries(), 3u);
  }
  ZoVariant holder(ZoVariant::kDict);
  holder.put(L"a/b", ZoVariant(1));
  EXPECT_EQ(holder.at(L"a")->get(*holder.asDict()), 0) << "into the dictionary that holds it";
  EXPECT_EQ(holder.at(L"b")->asInt(), 1);
}

TEST(Variant, SequencesKeepBeingListsAndArrays) {
  const ZoVariant list(List{ZoVariant(1)});
  const ZoVariant array(Array{ZoVariant(1)});
  const ZoVariant copy = list;
  EXPECT_NE(dynamic_cast<const List*>(copy.asSequence()), nullptr);
  EXPECT_NE(dynamic_cast<const Array*>(ZoVariant(array).asSequence()), nullptr);
  EXPECT_EQ(list, array) << "the same elements";
  EXPECT_NE(
      dynamic_cast<const List*>(ZoVariant(ZoVariant::kSequence, ZoTypeCode::List).asSequence()),
      nullptr);
}

TEST(Variant, GivesItsContainerOrAScratchOneThatBelongsToNobody) {
  ZoVariant v;
  v.setFlags(4u);
  static_cast<ZoVariant::Sequence&>(v).append(ZoVariant(1));
  EXPECT_EQ(v, ZoVariant(Array{ZoVariant(1)}, ZoTypeCode::Sequence, 4))
      << "an empty one becomes it";
  ZoVariant::Dict& scratch = v;
  EXPECT_EQ(scratch.put(L"x", v), 0);
  EXPECT_TRUE(static_cast<ZoVariant::Dict&>(v).isEmpty());
  EXPECT_EQ(v.entries(), 1u);
  ZoVariant number(5);
  static_cast<ZoVariant::Sequence&>(number).append(ZoVariant(1));
  EXPECT_EQ(number, ZoVariant(5));
  const ZoVariant constant;
  EXPECT_TRUE(static_cast<const ZoVariant::Sequence&>(constant).isEmpty());
  EXPECT_TRUE(static_cast<const ZoVariant::Dict&>(constant).isEmpty());
  EXPECT_EQ(static_cast<const ZoVariant::Sequence&>(std::as_const(v)).entries(), 1u);
}

TEST(Variant, EqualMeansEverythingThatCanBeSeen) {
  const std::vector<ZoVariant> values = everyKind();
  for (size_t i = 0; i < values.size(); ++i) {
    for (size_t k = 0; k < values.size(); ++k) EXPECT_EQ(values[i] == values[k], i == k) << i << k;
    ZoVariant other = values[i];
    other.setFlags(1u);
    EXPECT_NE(other, values[i]);
    other = values[i];
    EXPECT_EQ(other.setCode(ZoTypeCode::NoType), 0);
    EXPECT_EQ(other == values[i], i == 0);
    EXPECT_TRUE(other.isEqualTo(values[i])) << "the code is no part of the value";
  }
  EXPECT_EQ(ZoVariant(kNaN), ZoVariant(kNaN));
  EXPECT_EQ(ZoVariant(ZoPoint(kNaN, kInf, 0)), ZoVariant(ZoPoint(kNaN, kInf, 0)));
  EXPECT_NE(ZoVariant(ZoPoint(0, 0, 0)), ZoVariant(ZoPoint(0, 0, 1e-12)));
  EXPECT_NE(ZoVariant(1), ZoVariant(1.0));
  Dict a;
  Dict b;
  for (const wchar_t* key : {L"x", L"y", L"z"}) a.insertAt(key, ZoVariant(key));
  for (const wchar_t* key : {L"Z", L"X"}) b.insertAt(key, *a.at(key));
  EXPECT_NE(ZoVariant(a), ZoVariant(b));
  b.insertAt(L"w", ZoVariant(L"y"));
  EXPECT_NE(ZoVariant(a), ZoVariant(b)) << "as many, but not the same keys";
  b.removeAt(L"w");
  b.insertAt(L"Y", ZoVariant(L"y"));
  EXPECT_EQ(ZoVariant(a), ZoVariant(b)) << "keys ignore case and order";
}

TEST(Variant, TolerantEqualityDecidesAtExactlyTheTolerance) {
  const ZoTol tol(0.5, 0.25);
  struct Case {
    ZoVariant a, b;
    bool equal;
  };
  for (const Case& c :
       std::vector<Case>{{1.0, 1.5, true},
                         {1.0, 1.5000001, false},
                         {1, 1.5, true},
                         {1, 2, false},
                         {std::int64_t{1} << 60, (std::int64_t{1} << 60) + 1, false},
                         {std::int64_t{7}, 7, true},
                         {kNaN, kNaN, true},
                         {kNaN, 0.0, false},
                         {kInf, kInf, true},
                         {kInf, -kInf, false},
                         {kInf, 1e308, false},
                         {ZoPoint(0, 0, 0), ZoPoint(0, 0.5, 0), true},
                         {ZoPoint(0, 0, 0), ZoPoint(0, 0.5000001, 0), false},
                         {ZoPoint(kNaN, 0, 0), ZoPoint(kNaN, 0, 0), true},
                         {ZoVector(0, 0, 0), ZoVector(0, 0.25, 0), true},
                         {ZoVector(0, 0, 0), ZoVector(0, 0.2500001, 0), false},
                         {ZoPoint(0, 0, 0), ZoVector(0, 0, 0), false},
                         {L"a", L"A", false},
                         {1, L"1", false},
                         {Array{ZoVariant(1.0)}, Array{ZoVariant(1.5)}, true},
                         {Array{ZoVariant(1.0)}, Array{ZoVariant(1.6)}, false},
                         {Array{ZoVariant(1)}, Array{}, false}}) {
    EXPECT_EQ(c.a.isEqualTo(c.b, tol), c.equal)
        << testing::PrintToString(c.a) << " " << testing::PrintToString(c.b);
    EXPECT_EQ(c.b.isEqualTo(c.a, tol), c.equal);
  }
}

TEST(Variant, AssignedValuesKeepFlagsAndTheCodeOfTheSameKind) {
  ZoVariant v(1.5, ZoTypeCode::Length, 0x8004);
  v = 2.5;
  EXPECT_EQ(v, ZoVariant(2.5, ZoTypeCode::Length, 0x8004));
  v = L"text";
  EXPECT_EQ(v, ZoVariant(L"text", ZoTypeCode::String, 0x8004));
  v = v.asString();
  v = Array{v};
  EXPECT_EQ(v, ZoVariant(Array{ZoVariant(L"text", ZoTypeCode::String, 0x8004)},
                         ZoTypeCode::Sequence, 0x8004));
  v = ZoVariant::kDict;
  EXPECT_EQ(v.type(), ZoVariant::kDict);
}

TEST(Variant, PathsLeadToElementsAndMakeWhatIsMissing) {
  ZoVariant v;
  v.setFlags(4u);
  EXPECT_EQ(v.put(L"parts/bolt/length", ZoVariant(12.5)), 0);
  EXPECT_EQ(v.flags(), 4u);
  EXPECT_EQ(v.put(L"parts/list", ZoVariant(ZoVariant::kSequence)), 0);
  for (const wchar_t* path : {L"parts/list/0", L"parts/list/1", L"parts/list/2/deep"})
    EXPECT_EQ(v.put(path, ZoVariant(path)), 0);
  EXPECT_EQ(v.put(L"parts/list/0", ZoVariant(7)), 0);
  EXPECT_EQ(v.find(L"PARTS/Bolt/LENGTH")->asReal(), 12.5);
  EXPECT_EQ(v.find(L"parts/list/0")->asInt(), 7);
  EXPECT_EQ(v.find(L"parts/list/2/deep")->asString(), L"parts/list/2/deep");
  EXPECT_EQ(v.find(L""), &v);
  const ZoVariant before = v;
  for (const wchar_t* nowhere :
       {L"parts/list/3x", L"parts/list/4", L"parts/list/-1", L"parts/list/4294967299",
        L"parts/list/", L"parts/bolt/length/x", L"parts/list/0/1", L"parts/list/5/a/b"}) {
    EXPECT_EQ(v.find(nowhere), nullptr);
    EXPECT_EQ(v.put(nowhere, ZoVariant(1)), 1);
    EXPECT_EQ(v, before);
  }
  for (const wchar_t* missing : {L"x", L"parts//bolt", L"/parts", L"parts/"})
    EXPECT_EQ(v.find(missing), nullptr);
  for (const wchar_t* key : {L"a/b", L"~", L"~1", L"", L"/", L"a~0b/"}) {
    const ZoString path = ZoString(L"parts/") + ZoVariant::pathStep(key);
    EXPECT_EQ(v.put(path, ZoVariant(key)), 0);
    EXPECT_EQ(v.at(L"parts")->at(std::wstring_view(key))->asString(), key);
    EXPECT_EQ(v.find(path)->asString(), key);
  }
  EXPECT_EQ(v.put(L"", ZoVariant(1)), 0);
  EXPECT_EQ(v, ZoVariant(1));
  EXPECT_EQ(v.at(L"x"), nullptr);
  EXPECT_EQ(v.at(0u), nullptr);
}

}  // namespace
