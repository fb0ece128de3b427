// The text form: what it looks like, that it reads back, and that nothing else is taken.
#include <gtest/gtest.h>
#include <zo/variant/variant.h>

#include <bit>
#include <clocale>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "variant/variant_printers.h"

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr _GUID kGuid = {0xABCDEF01, 0xABCD, 0xEFAB, {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 7, 24}};

ZoTypeCode code(unsigned int value) { return static_cast<ZoTypeCode>(value); }
ZoVariant parsed(std::wstring_view text) {
  ZoVariant value;
  unsigned int end = 0;
  EXPECT_EQ(value.parse(text, &end), 0) << "stopped at " << end;
  return value;
}

void expectRoundTrip(const ZoVariant& value) {
  const ZoString text = value.format();
  EXPECT_EQ(parsed(text), value);
  EXPECT_EQ(parsed(text).format(), text);
}

ZoVariant sampleTree() {
  const Dict part{{L"length", ZoVariant(12.5, ZoTypeCode::Length, 0x8001)},
                  {L"Name", ZoVariant(L"Bolt \"M8\"\n", ZoTypeCode::Macro)},
                  {L"id", kGuid},
                  {L"rate", ZoVariant(1e100, ZoTypeCode::SpringRate)}};
  return Dict{{L"parts", Array{ZoVariant(part, ZoTypeCode::Part),
                               {},
                               Array{},
                               ZoVariant(Dict{}, ZoTypeCode::Standard, 0x4),
                               ZoPoint(1, -2.5, 1e-7),
                               ZoVariant(ZoVector(0, 0, 1), ZoTypeCode::XDirection),
                               ZoVariant(std::int64_t{-5}, ZoTypeCode::Date),
                               ZoVariant(reinterpret_cast<void*>(0x1234), ZoTypeCode::Dispatch),
                               ZoVariant(L"DIN 912", ZoTypeCode::Catalog),
                               ZoVariant(true, ZoTypeCode::NoType),
                               ZoVariant(7, ZoTypeCode::Length),  // does not fit: code 0
                               ZoVariant(7, code(0x21AB))}}};
}

constexpr wchar_t kSampleText[] =
    LR"(Dict {
	"parts" = Sequence [
		Part {
			"Name" = Macro "Bolt \"M8\"\n"
			"id" = GUID {ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}
			"length" = Length:AP 12.5
			"rate" = Spring_rate 1e+100
		}
		NoType
		Sequence []
		Standard:C {}
		Point (1, -2.5, 1e-07)
		XDirection (0, 0, 1)
		Date -5
		IDispatch 0x0000000000001234
		Catalog(String) "DIN 912"
		NoType(Int) 1
		#0000(Int) 7
		#21AB 7
	]
})";

TEST(VariantText, LooksLikeThisAndReadsBack) {
  EXPECT_EQ(sampleTree().format(), kSampleText);
  EXPECT_EQ(parsed(kSampleText), sampleTree());
  std::wostringstream out;
  out << sampleTree();
  EXPECT_EQ(out.str(), kSampleText);
  const ZoVariant small(Array{1}, ZoTypeCode::Array, 3);
  EXPECT_EQ(small.format(2), L"\t\tArray:AB [\n\t\t\tInt 1\n\t\t]");
  EXPECT_EQ(small.printType() + small.printFlags(), L"Array:AB");
  EXPECT_EQ(ZoVariant().printFlags(), L"");
  double target = 2.5;
  EXPECT_EQ(ZoVariant(&target).format(), L"Real 2.5") << "a reference is its value";
}

TEST(VariantText, DictionariesComeInTheOrderOfTheCodeUnitsOfTheirKeys) {
  const std::vector<std::wstring> ordered = {L"",
                                             std::wstring(1, L'\0'),
                                             L"Z",
                                             L"same beginning",
                                             L"same beginning 1",
                                             L"same beginning 10",
                                             L"same beginning 1234a",
                                             L"same beginning 1234b",
                                             L"same beginning 2",
                                             L"\xD800",
                                             L"\xFFFF"};
  for (size_t first = 0; first < ordered.size(); ++first) {
    for (size_t last = first; last < ordered.size(); ++last) {
      Dict dict;
      std::wstring expected = L"Dict {";
      for (size_t i = first; i <= last; ++i) {
        const ZoString key(std::wstring_view{ordered[i]});
        dict.insertAt(key, 1);
        // A string's own text form is that of a key.
        expected += L"\n\t" + std::wstring(ZoVariant(key).format().view().substr(7)) + L" = Int 1";
      }
      EXPECT_EQ(ZoVariant(dict).format(), expected + L"\n}") << first << " " << last;
    }
  }
}

TEST(VariantText, EveryKindCodeAndFlagReadsBack) {
  for (unsigned int kind = 0; kind <= 10; ++kind) {
    for (unsigned int c : {0u, 1000u, 1004u, 1012u, 1071u, 0x2000u, 0x2100u, 0x21FFu, 0x22FFu,
                           0x2308u, 0x2404u, 0x280Fu, 0x2A00u, 0xFFFFFFFFu}) {
      for (unsigned int flags : {0u, 1u, 0x2000000u, 0x3FFFFFFu})
        expectRoundTrip(ZoVariant(static_cast<ZoVariant::Type>(kind), code(c), flags));
    }
  }
  for (unsigned int c = 0x2000; c < 0x2A10; ++c)
    expectRoundTrip(ZoVariant(ZoVariant::kEmpty, code(c)));
}

TEST(VariantText, EveryNumberReadsBackInEveryLocale) {
  std::mt19937_64 random(11);
  for (const char* locale : {"C", "German"}) {
    std::setlocale(LC_ALL, locale);
    for (const std::int64_t value : {INT64_MIN, INT64_MAX}) expectRoundTrip(value);
    expectRoundTrip(INT32_MIN);
    expectRoundTrip(ZoPoint(kInf, -0.0, std::numeric_limits<double>::quiet_NaN()));
    for (int i = 0; i < 300; ++i) expectRoundTrip(std::bit_cast<double>(random()));
  }
  std::setlocale(LC_ALL, "C");
}

TEST(VariantText, EveryCharacterReadsBackAndLoneSurrogatesAreEscaped) {
  std::wstring all;
  for (unsigned int c = 0; c < 0x10000; ++c) all += static_cast<wchar_t>(c);
  expectRoundTrip(ZoString(std::wstring_view(all)));
  Dict dict;
  dict.insertAt(ZoString(std::wstring_view(all)), ZoVariant(1));
  expectRoundTrip(dict);
  for (const auto& [text, form] : std::vector<std::pair<std::wstring, std::wstring>>{
           {L"\xD83D\xDE00", L"\xD83D\xDE00"},
           {L"\xDE00\xD83D", L"\\uDE00\\uD83D"},
           {L"\xD83D\xD83D\xDE00\xDE00", L"\\uD83D\xD83D\xDE00\\uDE00"},
           {std::wstring(1, L'\0') + L"\x7F\t\r\x1B", L"\\u0000\\u007F\\t\\r\\u001B"},
           {L"\u00E4\\", L"\u00E4\\\\"}})
    EXPECT_EQ(ZoVariant(ZoString(std::wstring_view(text))).format(), L"String \"" + form + L"\"");
}

TEST(VariantText, TakesAnyWhiteSpaceAndBothSpellingsOfNames) {
  EXPECT_EQ(parsed(L"\r\n Dict{\"a\"=Int 1\t\"b\"=Sequence[String\"x\"String\"y\"NoType]}\n"),
            ZoVariant(Dict{{L"a", 1}, {L"b", Array{L"x", L"y", {}}}}));
  EXPECT_EQ(parsed(L"#2301 5"), ZoVariant(5.0, ZoTypeCode::Length));
  EXPECT_EQ(parsed(L"Point ( 1 ,2, 3 )"), ZoVariant(ZoPoint(1, 2, 3)));
  EXPECT_EQ(parsed(L"Real INF"), ZoVariant(kInf));
  EXPECT_EQ(parsed(L"GUID {abcdef01-abcd-EFAB-a1b2-c3d4e5f60718}"), ZoVariant(kGuid));
}

// A bar stands where the text is wrong.
TEST(VariantText, RefusesEverythingElseAndSaysWhere) {
  for (const wchar_t* marked : {L"|",
                                L"  |",
                                L"Int|",
                                L"Int |x",
                                L"Int 1|.5",
                                L"Int 1 |2",
                                L"Int |2147483648",
                                L"BigInt |9223372036854775808",
                                L"Real |1e400",
                                L"Real 1|,5",
                                L"|int 1",
                                L"|Integer 1",
                                L"#|",
                                L"#|XYZ 1",
                                L"|Int(Real) 5",
                                L"Int(Foo|) 5",
                                L"Int:| 5",
                                L"Int:|a 5",
                                L"String |x",
                                L"String \"|x",
                                L"String \"\\|x\"",
                                L"String \"\\u12|\"",
                                L"Pointer |1234",
                                L"Pointer 0x|",
                                L"Pointer 0x1234567890123456|7",
                                L"Point (1, 2|)",
                                L"Point (1, 2, 3|, 4)",
                                L"Point |1, 2, 3",
                                L"Point(|1, 2, 3)",
                                L"GUID |{1-2-3-4-010203040506}",
                                L"GUID |{ABCDEF01-ABCD-efab-A1B2-C3D4E5F6071}}",
                                L"Dict|",
                                L"Dict {|",
                                L"Dict {\"a\"|}",
                                L"Dict {\"a\" = |}",
                                L"Dict {|a = Int 1}",
                                L"Dict {\"a\" = Int 1|, \"b\" = Int 2}",
                                L"Dict {\"a\" = Int 1 |\"A\" = Int 2}",
                                L"Sequence [Int 1|",
                                L"Sequence [Int 1|}",
                                L"Sequence [Int 1|Int 2]",
                                L"Sequence |{}",
                                L"NoType|\"x\""}) {
    std::wstring text = marked;
    const size_t wrong = text.find(L'|');
    text.erase(wrong, 1);
    ZoVariant value(L"untouched");
    unsigned int end = 99;
    EXPECT_EQ(value.parse(text, &end), 1) << testing::PrintToString(ZoString(marked));
    EXPECT_EQ(value, ZoVariant(L"untouched"));
    EXPECT_EQ(end, wrong) << testing::PrintToString(ZoString(marked));
  }
  for (size_t n = 0; n + 1 < std::size(kSampleText); ++n) {  // cut anywhere
    ZoVariant value(1);
    unsigned int end = 0;
    EXPECT_EQ(value.parse({kSampleText, n}, &end), 1) << n;
    EXPECT_EQ(value, ZoVariant(1));
    EXPECT_LE(end, n + 1) << n;
  }
}

TEST(VariantText, NestingHasALimitInBothDirections) {
  ZoVariant value(ZoVariant::kSequence);
  for (unsigned int depth = 1; depth < ZoVariant::kMaxDepth; ++depth)
    value = depth % 2 ? inSequence(std::move(value)) : inDict(std::move(value));
  expectRoundTrip(value);
  const std::wstring deepest(value.format().view());
  ZoVariant read;
  EXPECT_EQ(read.parse(L"Sequence [" + deepest + L"]"), 1);
  const ZoVariant tooDeep = inSequence(std::move(value));
  ZoString out(L"x");
  EXPECT_EQ(tooDeep.format(out), 1);
  EXPECT_EQ(out, L"");
  EXPECT_EQ(tooDeep.asString(L"none"), L"none");
  std::wstring opened;
  for (int i = 0; i < 100'000; ++i) opened += L"Sequence [";
  EXPECT_EQ(read.parse(opened), 1);
}

// Whatever is read from a damaged text can be written and read again.
TEST(VariantText, DamagedTextsAreRefusedOrReadAsWhatTheyNowSay) {
#ifdef ZO_GUARDED
  constexpr int kRounds = 300;
#else
  constexpr int kRounds = 100'000;
#endif
  const std::wstring whole = kSampleText;
  const std::wstring alphabet = L"\"\\{}[]()#:=, \t\n09AFZaz_-+.\x7F\xD800\xFFFF";
  std::mt19937 random(12);
  int accepted = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::wstring text = whole;
    for (unsigned int edits = 1 + random() % 3; edits > 0; --edits) {
      const size_t at = random() % text.size();
      const bool copying = random() % 2 == 0;
      text.erase(at, random() % 2 == 0 ? 0 : random() % 8);
      text.insert(at, copying ? whole : alphabet,
                  random() % (copying ? whole.size() : alphabet.size()),
                  copying ? random() % 8 : random() % 2);
      if (text.empty()) text = L" ";
    }
    ZoVariant value;
    unsigned int end = 0;
    if (value.parse(text, &end) != 0) {
      EXPECT_TRUE(value.isEmpty());
      EXPECT_LE(end, text.size() + 1);
      continue;
    }
    ++accepted;
    if (accepted % 16 == 0) {
      EXPECT_EQ(parsed(value.format()), value);
    }
  }
  EXPECT_GT(accepted, 0);
}

TEST(VariantText, ManySmallDictionariesAreNotDeepAndTakeNoLargeTables) {
  std::wstring text = L"Sequence [";
  for (unsigned int i = 0; i < 2 * ZoVariant::kMaxDepth; ++i) text += L"Dict{}";
  const ZoVariant value = parsed(text + L"]");
  EXPECT_EQ(value.entries(), 2 * ZoVariant::kMaxDepth);
  const auto* const dict = dynamic_cast<const Dict*>(value.at(0u)->asDict());
  ASSERT_NE(dict, nullptr);
  EXPECT_LE(dict->buckets(), 8u);
}

}  // namespace
