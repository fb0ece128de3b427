// The text form: what it looks like, that it reads back, and that nothing else is taken.
#include <gtest/gtest.h>
#include <zo/variant/variant.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "variant/variant_printers.h"

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;

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
                               ZoVariant(std::int64_t{-5}, ZoTypeCode::Date),
                               ZoVariant(reinterpret_cast<void*>(0x1234), ZoTypeCode::Dispatch),
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
		Date -5
		IDispatch 0x0000000000001234
		NoType(Int) 1
		#0000(Int) 7
		#21AB 7
	]
})";

TEST(VariantText, LooksLikeThisAndReadsBack) {
  EXPECT_EQ(sampleTree().format(), kSampleText);
  EXPECT_EQ(parsed(kSampleText), sampleTree());
  EXPECT_EQ(
      parsed(L"\r\n Dict{\"a\"=#2301 1\t\"b\"=Sequence[String\"x\"String\"y\"NoType]}\n"),
      ZoVariant(Dict{{L"a", ZoVariant(1.0, ZoTypeCode::Length)}, {L"b", Array{L"x", L"y", {}}}}))
      << "any white space";
}

TEST(VariantText, DictionariesComeInTheOrderOfTheCodeUnitsOfTheirKeys) {
  const wchar_t* const ordered[] = {L"",           L"Z",          L"text",   L"text 1", L"text 10",
                                    L"text 1234a", L"text 1234b", L"text 2", L"\u00E4"};
  for (size_t first = 0; first < std::size(ordered); ++first) {
    Dict dict;
    std::wstring expected = L"Dict {";
    for (size_t i = first; i < std::size(ordered); ++i) {
      ASSERT_EQ(dict.insertAt(ordered[i], 1), 0);
      expected += std::wstring(L"\n\t\"") + ordered[i] + L"\" = Int 1";
    }
    EXPECT_EQ(ZoVariant(dict).format(), expected + L"\n}") << first;
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
}

TEST(VariantText, EveryNumberReadsBackInEveryLocale) {
  std::mt19937_64 random(11);
  for (const char* locale : {"C", "German"}) {
    std::setlocale(LC_ALL, locale);
    expectRoundTrip(INT64_MIN);
    expectRoundTrip(INT32_MIN);
    expectRoundTrip(ZoPoint(HUGE_VAL, -0.0, std::nan("")));
    for (int i = 0; i < 300; ++i) expectRoundTrip(std::bit_cast<double>(random()));
  }
  std::setlocale(LC_ALL, "C");
}

TEST(VariantText, EveryCharacterReadsBackAndLoneSurrogatesAreEscaped) {
  std::wstring all;
  for (unsigned int c = 0; c < 0x10000; ++c) all += static_cast<wchar_t>(c);
  const Dict dict{{ZoString(std::wstring_view(all)), ZoString(std::wstring_view(all))}};
  expectRoundTrip(dict);
  for (const auto& [text, form] : std::vector<std::pair<const wchar_t*, const wchar_t*>>{
           {L"\xD83D\xD83D\xDE00\xDE00", L"\\uD83D\xD83D\xDE00\\uDE00"},
           {L"\x7F\t\r\x1B\u00E4\\", L"\\u007F\\t\\r\\u001B\u00E4\\\\"}})
    EXPECT_EQ(ZoVariant(text).format(), std::wstring(L"String \"") + form + L"\"");
}

// A bar stands where the text is wrong.
TEST(VariantText, RefusesEverythingElseAndSaysWhere) {
  for (const wchar_t* marked :
       {L"Int|", L"Int 1|.5", L"Int 1 |2", L"Int |2147483648", L"Real 1|,5", L"|int 1",
        L"|Int(Real) 5", L"Int:| 5", L"String \"|x", L"String \"\\u12|\"",
        L"Pointer 0x1234567890123456|7", L"Point (1, 2|)", L"Dict {\"a\" = Int 1 |\"A\" = Int 2}",
        L"Sequence [Int 1|Int 2]"}) {
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

// Whatever is read from a damaged text can be written and read again.
TEST(VariantText, DamagedTextsAreRefusedOrReadAsWhatTheyNowSay) {
#ifdef ZO_GUARDED
  constexpr int kRounds = 300;
#else
  constexpr int kRounds = 100'000;
#endif
  const std::wstring whole = kSampleText, signs = L"\"\\{}[]()#:=, \t\n09AFZaz_-+.\x7F\xD800\xFFFF";
  std::mt19937 random(12);
  int accepted = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::wstring text = whole;
    for (unsigned int edits = 1 + random() % 3; edits > 0; --edits) {
      const std::wstring& source = random() % 2 ? whole : signs;
      const std::wstring piece = source.substr(random() % source.size(), random() % 4);
      text.replace(random() % text.size(), random() % 4, piece);
    }
    ZoVariant value;
    unsigned int end = 0;
    if (value.parse(text, &end) != 0) {
      EXPECT_TRUE(value.isEmpty());
      EXPECT_LE(end, text.size() + 1);
      continue;
    }
    if (++accepted % 16 == 0) {
      EXPECT_EQ(parsed(value.format()), value);
    }
  }
  EXPECT_GT(accepted, 0);
}

}  // namespace
