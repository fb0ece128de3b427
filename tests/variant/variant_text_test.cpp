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
std::string shown(const wchar_t* text) { return testing::PrintToString(ZoString(text)); }

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
  Dict part;
  part.insertAt(L"length", ZoVariant(12.5, ZoTypeCode::Length, 0x8001));
  part.insertAt(L"Name", ZoVariant(L"Bolt \"M8\"\n", ZoTypeCode::Macro));
  part.insertAt(L"id", ZoVariant(kGuid));
  part.insertAt(L"rate", ZoVariant(1e100, ZoTypeCode::SpringRate));
  Array list;
  list.append(ZoVariant(part, ZoTypeCode::Part));
  list.append(ZoVariant());
  list.append(ZoVariant(Array{}));
  list.append(ZoVariant(Dict{}, ZoTypeCode::Standard, 0x4));
  list.append(ZoVariant(ZoPoint(1, -2.5, 1e-7)));
  list.append(ZoVariant(ZoVector(0, 0, 1), ZoTypeCode::XDirection));
  list.append(ZoVariant(std::int64_t{-5}, ZoTypeCode::Date));
  list.append(ZoVariant(reinterpret_cast<void*>(0x1234), ZoTypeCode::Dispatch));
  list.append(ZoVariant(L"DIN 912", ZoTypeCode::Catalog));
  list.append(ZoVariant(true, ZoTypeCode::NoType));
  list.append(ZoVariant(7, ZoTypeCode::Length));  // does not fit: code 0
  list.append(ZoVariant(7, code(0x21AB)));
  Dict root;
  root.insertAt(L"parts", ZoVariant(list));
  return ZoVariant(root);
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
  const ZoVariant small(Array{ZoVariant(1)}, ZoTypeCode::Array, 3);
  EXPECT_EQ(small.format(2), L"\t\tArray:AB [\n\t\t\tInt 1\n\t\t]");
  EXPECT_EQ(small.printType(), L"Array");
  EXPECT_EQ(small.printFlags(), L":AB");
  EXPECT_EQ(ZoVariant().printFlags(), L"");
  EXPECT_EQ(ZoVariant::printTabs(2), L"\t\t");
  double target = 2.5;
  EXPECT_EQ(ZoVariant(&target).format(), L"Real 2.5") << "a reference is its value";
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
    for (const double value :
         {0.0, -0.0, kInf, -kInf, std::numeric_limits<double>::quiet_NaN(), 5e-324, 0.1}) {
      expectRoundTrip(value);
      expectRoundTrip(ZoPoint(value, 1.5, value));
    }
    for (const std::int64_t value : {INT64_MIN, INT64_MAX, std::int64_t{0}}) expectRoundTrip(value);
    expectRoundTrip(INT32_MIN);
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
  EXPECT_EQ(
      parsed(L"\r\n Dict{\"a\"=Int 1\t\"b\"=Sequence[String\"x\"String\"y\"NoType]}\n"),
      ZoVariant(Dict{{L"a", ZoVariant(1)},
                     {L"b", ZoVariant(Array{ZoVariant(L"x"), ZoVariant(L"y"), ZoVariant()})}}));
  EXPECT_EQ(parsed(L"#2301 5"), ZoVariant(5.0, ZoTypeCode::Length));
  EXPECT_EQ(parsed(L"Point ( 1 ,2, 3 )"), ZoVariant(ZoPoint(1, 2, 3)));
  EXPECT_EQ(parsed(L"Real INF"), ZoVariant(kInf));
  EXPECT_EQ(parsed(L"GUID {abcdef01-abcd-EFAB-a1b2-c3d4e5f60718}"), ZoVariant(kGuid));
}

TEST(VariantText, RefusesEverythingElseAndSaysWhere) {
  struct Case {
    const wchar_t* text;
    unsigned int end;
  };
  for (const Case& c : std::vector<Case>{{L"", 0},
                                         {L"  ", 2},
                                         {L"Int", 3},
                                         {L"Int x", 4},
                                         {L"Int 1.5", 5},
                                         {L"Int 1 2", 6},
                                         {L"Int 2147483648", 4},
                                         {L"BigInt 9223372036854775808", 7},
                                         {L"Real 1e400", 5},
                                         {L"Real 1,5", 6},
                                         {L"int 1", 0},
                                         {L"Integer 1", 0},
                                         {L"#", 1},
                                         {L"#XYZ 1", 1},
                                         {L"Int(Real) 5", 0},
                                         {L"Int(Foo) 5", 7},
                                         {L"Int: 5", 4},
                                         {L"Int:a 5", 4},
                                         {L"String x", 7},
                                         {L"String \"x", 8},
                                         {L"String \"\\x\"", 9},
                                         {L"String \"\\u12\"", 12},
                                         {L"Pointer 1234", 8},
                                         {L"Pointer 0x", 10},
                                         {L"Pointer 0x12345678901234567", 26},
                                         {L"Point (1, 2)", 11},
                                         {L"Point (1, 2, 3, 4)", 14},
                                         {L"Point 1, 2, 3", 6},
                                         {L"Point(1, 2, 3)", 6},
                                         {L"GUID {1-2-3-4-010203040506}", 5},
                                         {L"GUID {ABCDEF01-ABCD-efab-A1B2-C3D4E5F6071}}", 5},
                                         {L"Dict", 4},
                                         {L"Dict {", 6},
                                         {L"Dict {\"a\"}", 9},
                                         {L"Dict {\"a\" = }", 12},
                                         {L"Dict {a = Int 1}", 6},
                                         {L"Dict {\"a\" = Int 1, \"b\" = Int 2}", 17},
                                         {L"Dict {\"a\" = Int 1 \"A\" = Int 2}", 18},
                                         {L"Sequence [Int 1", 15},
                                         {L"Sequence [Int 1}", 15},
                                         {L"Sequence {}", 9},
                                         {L"NoType\"x\"", 6}}) {
    ZoVariant value(L"untouched");
    unsigned int end = 99;
    EXPECT_EQ(value.parse(c.text, &end), 1) << shown(c.text);
    EXPECT_EQ(value, ZoVariant(L"untouched"));
    EXPECT_EQ(end, c.end) << shown(c.text);
  }
}

TEST(VariantText, NestingHasALimitInBothDirections) {
  ZoVariant value(ZoVariant::kSequence);
  std::wstring text = L"Sequence []";
  for (unsigned int depth = 1; depth < ZoVariant::kMaxDepth; ++depth) {
    value =
        depth % 2 ? ZoVariant(Array{std::move(value)}) : ZoVariant(Dict{{L"k", std::move(value)}});
    text = L"Sequence [" + text + L"]";
  }
  expectRoundTrip(value);
  ZoVariant read;
  EXPECT_EQ(read.parse(text), 0);
  const ZoVariant tooDeep(Array{value});
  ZoString out(L"x");
  EXPECT_EQ(tooDeep.format(out), 1);
  EXPECT_EQ(out, L"");
  EXPECT_EQ(tooDeep.asString(L"none"), L"none");
  EXPECT_EQ(read.parse(L"Sequence [" + text + L"]"), 1);
  std::wstring opened;
  for (int i = 0; i < 100'000; ++i) opened += L"Sequence [";
  EXPECT_EQ(read.parse(opened), 1);
}

// A cut text is refused, whatever is cut off; numbers at the very end are the one thing that cannot
// be told.
TEST(VariantText, ACutTextIsRefused) {
  const std::wstring_view whole = kSampleText;
  for (size_t n = 0; n < whole.size(); ++n) {
    ZoVariant value(1);
    unsigned int end = 0;
    EXPECT_EQ(value.parse(whole.substr(0, n), &end), 1) << n;
    EXPECT_EQ(value, ZoVariant(1));
    EXPECT_LE(end, n + 1) << n;
  }
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
      const size_t n = random() % 8;
      switch (random() % 4) {
        case 0:
          text[at] = alphabet[random() % alphabet.size()];
          break;
        case 1:
          text.erase(at, n);
          break;
        case 2:
          text.insert(at, whole, random() % whole.size(), n);
          break;
        default:
          text.insert(at, 1, alphabet[random() % alphabet.size()]);
          break;
      }
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

TEST(VariantText, ManyEmptyDictionariesTakeNoLargeTables) {
  std::wstring text = L"Sequence [";
  for (int i = 0; i < 20'000; ++i) text += L"Dict{}";
  ZoVariant value;
  EXPECT_EQ(value.parse(text + L"]"), 0);
  EXPECT_EQ(value.entries(), 20'000u);
  const auto* const dict = dynamic_cast<const Dict*>(value.at(0u)->asDict());
  ASSERT_NE(dict, nullptr);
  EXPECT_LE(dict->buckets(), 8u);
}

}  // namespace
