// Variants as XML and JSON: nothing is lost, and nothing else is taken.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/geometry.h>
#include <zo/variant.h>
#include <zo/xml.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>

#include "support/documents.h"
#include "support/faulty_files.h"
#include "support/file_bytes.h"
#include "support/temp_folder.h"
#include "variant/variant_printers.h"

using namespace zo::test;

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;
using Array = ZoArray<ZoVariant>;

constexpr _GUID kGuid = {0xABCDEF01, 0xABCD, 0xEFAB, {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 7, 24}};

ZoTypeCode code(unsigned int value) { return static_cast<ZoTypeCode>(value); }
double bits(std::uint64_t value) { return std::bit_cast<double>(value); }

// ---- Both forms behind one door ----

struct Form {
  const char* name;
  int (*write)(const ZoVariant&, ZoString&);
  int (*read)(std::wstring_view, ZoVariant&, ZoXMLError&);
};

template <ZoXMLClass::Format format>
int writeXml(const ZoVariant& value, ZoString& text) {
  ZoXMLClass document;
  const int result = ZoXMLClass::fromVariant(value, document);
  return result == 0 ? document.write(text, format) : result;
}
int readXml(std::wstring_view text, ZoVariant& value, ZoXMLError& error) {
  ZoXMLClass document;
  int result = document.parse(text);
  if (result == 0) result = document.toVariant(value);
  error = document.error();
  return result;
}
template <ZoJson::Format format>
int writeJson(const ZoVariant& value, ZoString& text) {
  return ZoJson::format(value, text, format);
}
int readJson(std::wstring_view text, ZoVariant& value, ZoXMLError& error) {
  return ZoJson::parse(text, value, &error);
}

void PrintTo(const Form& form, std::ostream* out) { *out << form.name; }

class VariantForms : public testing::TestWithParam<Form> {};
INSTANTIATE_TEST_SUITE_P(
    All, VariantForms,
    testing::Values(Form{"Xml", writeXml<ZoXMLClass::kAsIs>, readXml},
                    Form{"XmlIndented", writeXml<ZoXMLClass::kIndented>, readXml},
                    Form{"Json", writeJson<ZoJson::kCompact>, readJson},
                    Form{"JsonIndented", writeJson<ZoJson::kIndented>, readJson}),
    [](const auto& form) { return form.param.name; });

// Bits of numbers, the case of keys and the code of every level, which == does not all see.
void expectSame(const ZoVariant& a, const ZoVariant& b) {
  ASSERT_EQ(a.code(), b.code());
  ASSERT_EQ(a.typeWord(), b.typeWord());
  const auto same = [](double x, double y) { return std::memcmp(&x, &y, sizeof x) == 0; };
  if (a.isTypeOf(ZoVariant::kReal)) {
    ASSERT_TRUE(same(a.asReal(), b.asReal())) << a.asReal();
  }
  if (a.isTypeOf(ZoVariant::kPoint)) {
    const ZoPoint p = a.asPoint();
    const ZoPoint q = b.asPoint();
    ASSERT_TRUE(same(p.x, q.x) && same(p.y, q.y) && same(p.z, q.z) && same(p.w, q.w));
  }
  if (const ZoVariant::Dict* const dict = a.asDict()) {
    ASSERT_EQ(a.entries(), b.entries());
    std::map<std::wstring, const ZoVariant*> keys;
    for (const auto [key, position, value] : b.elements()) keys[std::wstring(key->view())] = &value;
    for (const auto [key, value] : *dict) {
      const auto found = keys.find(std::wstring(key.view()));
      ASSERT_TRUE(found != keys.end());
      expectSame(value, *found->second);
    }
  } else if (a.asSequence()) {
    ASSERT_EQ(a.entries(), b.entries());
    for (unsigned int i = 0; i < a.entries(); ++i) expectSame(*a.at(i), *b.at(i));
  } else {
    ASSERT_EQ(a, b);
  }
}

void expectRoundTrip(const Form& form, const ZoVariant& value) {
  ZoString text;
  ASSERT_EQ(form.write(value, text), 0);
  ZoVariant read(L"before");
  ZoXMLError error;
  ASSERT_EQ(form.read(text.view(), read, error), 0) << text.toUtf8() << "\n"
                                                    << error.message().toUtf8();
  SCOPED_TRACE(text.toUtf8());
  expectSame(value, read);
}

// ---- Values ----

std::wstring anyText(std::mt19937_64& random) {
  constexpr wchar_t kUnits[] = {L'a',   L'\\',  L'u',   L' ',   L'\n',  L'\r', L'\t', L'<', L'&',
                                L'"',   L'\'',  L'$',   L'\0',  0x1F,   0x7F,  0x85,  0xE4, 0xD800,
                                0xDBFF, 0xDC00, 0xFFFE, 0xFFFF, 0xFEFF, L']',  L'>',  L'-'};
  std::wstring text;
  for (auto left = random() % 7; left > 0; --left) text += kUnits[random() % std::size(kUnits)];
  return text;
}
double anyReal(std::mt19937_64& random) {
  const double special[] = {-0.0,
                            HUGE_VAL,
                            -HUGE_VAL,
                            bits(0x7FF8000000000000),
                            bits(0xFFF8000000000000),
                            bits(0x7FF0000000000001),
                            5e-324,
                            1e300,
                            3};
  return random() % 2 ? special[random() % std::size(special)] : bits(random());
}
ZoTypeCode anyCode(std::mt19937_64& random) {
  constexpr unsigned int kBases[] = {0x2000, 0x2100, 0x2200, 0x2300, 0x2400, 0x2500, 0x2600, 0x2700,
                                     0x2800, 0x2900, 0x22FF, 1000,   1070,   1040,   0};
  return code(kBases[random() % std::size(kBases)] + static_cast<unsigned int>(random() % 4));
}
ZoVariant anyValue(std::mt19937_64& random, unsigned int depth) {
  const auto kind = static_cast<ZoVariant::Type>(random() % (depth > 0 ? 11 : 8));
  ZoVariant value;
  switch (kind) {
    case ZoVariant::kInt:
      value = ZoVariant(static_cast<int>(random() % 4 ? random() : random() % 2));
      break;
    case ZoVariant::kBigInt:
      value = ZoVariant(static_cast<std::int64_t>(random() >> random() % 64));
      break;
    case ZoVariant::kReal:
      value = ZoVariant(anyReal(random));
      break;
    case ZoVariant::kString:
      value = ZoVariant(std::wstring_view(anyText(random)));
      break;
    case ZoVariant::kPointer:
      value = ZoVariant(reinterpret_cast<void*>(random()));
      break;
    case ZoVariant::kPoint: {
      ZoPoint point(anyReal(random), anyReal(random), anyReal(random));
      if (random() % 2) point.w = anyReal(random);
      value = ZoVariant(point);
      break;
    }
    case ZoVariant::kVector:
      value = ZoVariant(ZoVector(anyReal(random), anyReal(random), anyReal(random)));
      break;
    case ZoVariant::kDict: {
      Dict dict;
      for (auto left = random() % 5; left > 0; --left)
        (void)dict.insertAt(
            random() % 9 ? ZoString(std::wstring_view(anyText(random))) : ZoString(L"$zo"),
            anyValue(random, depth - 1));
      value = ZoVariant(std::move(dict));
      break;
    }
    case ZoVariant::kSequence: {
      Array array;
      for (auto left = random() % 5; left > 0; --left)
        (void)array.append(anyValue(random, depth - 1));
      value = ZoVariant(std::move(array));
      break;
    }
    case ZoVariant::kGuid:
      value = ZoVariant(kGuid);
      break;
    default:
      break;
  }
  if (random() % 3 == 0) (void)value.setCode(anyCode(random));
  if (random() % 4 == 0) value.setFlags(static_cast<unsigned int>(random()));
  return value;
}

TEST_P(VariantForms, RandomTreesComeBackBitForBit) {
  std::mt19937_64 random(23);
  for (int i = 0; i < 400; ++i) {
    expectRoundTrip(GetParam(), anyValue(random, 4));
    if (HasFatalFailure()) FAIL() << i;
  }
}

TEST_P(VariantForms, EveryKindCodeAndFlagComesBack) {
  for (unsigned int kind = 0; kind <= 10; ++kind) {
    for (const unsigned int c : {0u, 1000u, 1012u, 1071u, 0x2000u, 0x2103u, 0x2308u, 0x2404u,
                                 0x2407u, 0x2702u, 0x280Fu, 0x2A00u, 0x22FFu, 0xFFFFFFFFu}) {
      for (const unsigned int flags : {0u, 1u, 0x2000000u, 0x3FFFFFFu})
        expectRoundTrip(GetParam(), ZoVariant(static_cast<ZoVariant::Type>(kind), code(c), flags));
    }
  }
  int number = 5;
  ZoString text;
  ZoVariant read;
  ZoXMLError error;
  ASSERT_EQ(GetParam().write(ZoVariant(&number, ZoTypeCode::Long, 4), text), 0);
  ASSERT_EQ(GetParam().read(text.view(), read, error), 0);
  EXPECT_EQ(read, ZoVariant(5, ZoTypeCode::Long, 4));
  EXPECT_FALSE(read.isReference());
}

TEST_P(VariantForms, EveryUnitComesBackAsTextAndKey) {
  std::wstring all;
  for (unsigned int unit = 0; unit <= 0xFFFF; ++unit) all += static_cast<wchar_t>(unit);
  expectRoundTrip(GetParam(), ZoVariant(std::wstring_view(all)));
  Array each;
  for (unsigned int unit = 0; unit <= 0xFFFF; unit += unit < 0x100 || unit > 0xFFF0 ? 1 : 0xFF) {
    const ZoString text(static_cast<wchar_t>(unit));
    (void)each.append(ZoVariant(text));
    (void)each.append(ZoVariant(Dict{{text, ZoVariant(text)}}));
  }
  expectRoundTrip(GetParam(), ZoVariant(std::move(each)));
}

TEST_P(VariantForms, DepthIsBoundedWithoutALoss) {
  expectRoundTrip(GetParam(), nested(ZoVariant::kMaxDepth));
  ZoString text = L"stays";
  EXPECT_EQ(GetParam().write(nested(ZoVariant::kMaxDepth + 1), text), ZoResult::beyondLimits);
  EXPECT_EQ(text, L"stays");
}

// ---- What is refused ----

struct Refused {
  const wchar_t* text;
  int code;
  unsigned int line, column;  // 0: any
};

void expectRefused(int (*read)(std::wstring_view, ZoVariant&, ZoXMLError&), const Refused& row) {
  ZoVariant value(L"before");
  ZoXMLError error;
  EXPECT_EQ(read(row.text, value, error), row.code) << row.text;
  if (row.line > 0) {
    EXPECT_EQ(error.line, row.line) << row.text;
  }
  if (row.column > 0) {
    EXPECT_EQ(error.column, row.column) << row.text;
  }
  EXPECT_FALSE(error.reason.isEmpty());
  EXPECT_EQ(value, ZoVariant(L"before"));
}

// Numbers of other languages.
constexpr const wchar_t* kNoReals[] = {L"NaN",  L"-nan", L" nan", L"nan:1", L"INF", L"infinity",
                                       L"+inf", L"inf ", L"+5",   L"05.0",  L".5",  L"5.",
                                       L"1e",   L" 5",   L"5 ",   L"-",     L"",    L"0x1p1"};

TEST(VariantXml, RefusesWhatIsWrittenOtherwise) {
  const wchar_t* const texts[] = {L"<Int>1</Int>",  // no zo="1"
                                  L"<Int zo='2'>1</Int>",
                                  L"<Foo zo='1'/>",
                                  L"<Int zo='1' what='x'>1</Int>",
                                  L"<Int zo='1' key='k'>1</Int>",
                                  L"<Int zo='1'/>",
                                  L"<Int zo='1'> 1x</Int>",
                                  L"<Int zo='1'>2147483648</Int>",
                                  L"<Int zo='1' type='Length'>1</Int>",
                                  L"<Int zo='1' type='Int:'>1</Int>",
                                  L"<Int zo='1' escaped='yes'>1</Int>",
                                  L"<BigInt zo='1'>9223372036854775808</BigInt>",
                                  L"<Real zo='1'>nan:3FF0000000000000</Real>",
                                  L"<Real zo='1'>1<Int>1</Int></Real>",
                                  L"<String zo='1' escaped='yes'>\\x</String>",
                                  L"<String zo='1' escaped='yes'>\\u12</String>",
                                  L"<String zo='1' escaped='no'>x</String>",
                                  L"<Point zo='1'>1 2</Point>",
                                  L"<Point zo='1'>1 2 3 4 5</Point>",
                                  L"<Vector zo='1'>1 2 3 4</Vector>",
                                  L"<Vector zo='1'>1 2 3 </Vector>",
                                  L"<Pointer zo='1'>0x1</Pointer>",
                                  L"<Int zo='1' type='Int:AA'>1</Int>",
                                  L"<Pointer zo='1'>12</Pointer>",
                                  L"<GUID zo='1'>{1}</GUID>",
                                  L"<Empty zo='1'>x</Empty>",
                                  L"<Dict zo='1'><Int>1</Int></Dict>",
                                  L"<Dict zo='1'><Int key='a' escapedKey='b'>1</Int></Dict>",
                                  L"<Dict zo='1'><Int key='a'>1</Int><Int key='A'>1</Int></Dict>",
                                  L"<Dict zo='1'>x</Dict>",
                                  L"<Sequence zo='1'><Int key='a'>1</Int></Sequence>",
                                  L"<Sequence zo='1'><Int zo='1'>1</Int></Sequence>"};
  for (const wchar_t* text : texts) expectRefused(readXml, {text, ZoResult::noVariant, 0, 0});
  for (const wchar_t* real : kNoReals) {
    for (const wchar_t* kind : {L"Real", L"Int"}) {
      const std::wstring text =
          std::wstring(L"<") + kind + L" zo='1'>" + real + L"</" + kind + L">";
      expectRefused(readXml, {text.c_str(), ZoResult::noVariant, 0, 0});
    }
  }
  // Where write() has it, which gives a line to the declaration.
  expectRefused(readXml, {L"<Dict zo='1'>\n <Int key='a'>1</Int>\n <Int key='A'>1</Int></Dict>",
                          ZoResult::noVariant, 4, 3});
  ZoVariant value;
  ZoXMLError error;
  ASSERT_EQ(
      readXml(L"<!--c--><Dict zo='1' xmlns:x='urn:x'> <!--c-->\n<String key='a'>1<![CDATA[<]]>"
              L"<!--c-->&#65;</String><?p?></Dict>",
              value, error),
      0);
  EXPECT_EQ(value, ZoVariant(Dict{{L"a", L"1<A"}}));
}

TEST(VariantJson, RefusesWhatIsNoneWithItsPlace) {
  constexpr int kBad = ZoResult::notWellFormed;
  constexpr int kNone = ZoResult::noVariant;
  const Refused rows[] = {
      {L"", kBad, 1, 1},
      {L" \n", kBad, 2, 1},
      {L"nul", kBad, 1, 1},
      {L"[1,]", kBad, 1, 4},
      {L"[1 2]", kBad, 1, 4},
      {L"[\n1", kBad, 2, 2},
      {L"{\"a\":1,}", kBad, 1, 8},
      {L"{a:1}", kBad, 1, 2},
      {L"{\"a\" 1}", kBad, 1, 6},
      {L"{\"a\":1", kBad, 1, 7},
      {L"{\"a\":1,\n \"A\":2}", kBad, 2, 2},  // the same key
      {L"1 2", kBad, 1, 3},
      {L"[1]\r\n\r\n]", kBad, 3, 1},
      {L"01", kBad, 1, 2},
      {L"-", kBad, 1, 1},
      {L"+1", kBad, 1, 1},
      {L"1.", kBad, 1, 3},
      {L".5", kBad, 1, 1},
      {L"1e+", kBad, 1, 4},
      {L"NaN", kBad, 1, 1},
      {L"[1e999]", kBad, 1, 2},
      {L"[-9223372036854775809]", kBad, 1, 2},
      {L"18446744073709551615", kBad, 1, 1},
      {L"\"a", kBad, 1, 3},
      {L"\"a\nb\"", kBad, 1, 3},
      {L"\"\\x\"", kBad, 1, 2},
      {L"\"\\u12\"", kBad, 1, 2},
      {L"\"x\\ud800\"", kBad, 1, 3},
      {L"\"\\ud800\\u0041\"", kBad, 1, 2},
      {L"\"\\udc00\"", kBad, 1, 2},
      {L"\"\xD800\"", kBad, 1, 2},
      {L"'a'", kBad, 1, 1},
      {L"[1] // no", kBad, 1, 5},
      {L"{\"a\":1,\"$zo\":1}", kNone, 1, 8},
      {L"{\"$zo\":1}", kNone, 1, 2},
      {L"{\"$zo\":[\"Nothing\",1]}", kNone, 1, 9},
      {L"{\"$zo\":[\"Length(Int)\",1]}", kNone, 1, 9},
      {L"{\"$zo\":[\"Int\"]}", kNone, 1, 14},
      {L"{\"$zo\":[\"Int\",1,2]}", kNone, 1, 16},
      {L"{\"$zo\":[\"Int\",1],\"a\":2}", kNone, 1, 17},
      {L"{\"$zo\":[\"Int\" 1]}", kBad, 1, 15},
      {L"{\"$zo\":[\"Int\",", kBad, 1, 15},
      {L"{\"$zo\":[\"Int\",\"3\"]}", kNone, 1, 15},
      {L"{\"$zo\":[\"Int:AA\",3]}", kNone, 1, 9},
      {L"{\"$zo\":[\"Bool\",true]}", kNone, 1, 16},
      {L"{\"$zo\":[\"NoType\",1]}", kNone, 1, 18},
      {L"{\"\\u0024zo\":1}", kNone, 1, 2},
      {L"{\"$zo\":[\"Dict\",[[\"a\"]]]}", kNone, 1, 21},
      {L"{\"$zo\":[\"Dict\",[[\"a\",1,2]]]}", kNone, 1, 23},
      {L"{\"$zo\":[\"Dict\",[1]]}", kNone, 1, 17},
      {L"{\"$zo\":[\"Dict\",[[1,2]]]}", kNone, 1, 18},
      {L"\xFEFF\xFEFF 1", kBad, 1, 1},
      {L"{\"$zo\":[\"Int\",1.5]}", kNone, 1, 15},
      {L"{\"$zo\":[\"Int\",2147483648]}", kNone, 1, 15},
      {L"{\"$zo\":[\"Real\",\"1\"]}", kNone, 1, 16},
      {L"{\"$zo\":[\"Point\",[1,2]]}", kNone, 1, 17},
      {L"{\"$zo\":[\"Vector\",[1,2,3,4]]}", kNone, 1, 18},
      {L"{\"$zo\":[\"GUID\",\"{1}\"]}", kNone, 1, 16},
      {L"{\"$zo\":[\"Pointer\",12]}", kNone, 1, 19},
      {L"{\"$zo\":[\"String\",[65536]]}", kNone, 1, 19},
      {L"{\"$zo\":[\"Dict\",[[\"a\",1],[\"A\",1]]]}", kBad, 1, 25},
      {L"{\"$zo\":[\"Sequence\",{}]}", kNone, 1, 20},
  };
  for (const Refused& row : rows) expectRefused(readJson, row);
  for (const wchar_t* real : kNoReals) {
    const std::wstring text = std::wstring(L"{\"$zo\":[\"Real\",\"") + real + L"\"]}";
    expectRefused(readJson, {text.c_str(), kNone, 1, 16});
  }
  std::wstring deep(ZoVariant::kMaxDepth + 1, L'[');
  expectRefused(readJson, {deep.c_str(), ZoResult::beyondLimits, 1, ZoVariant::kMaxDepth + 1});
  deep.assign(1'000'000, L'[');
  expectRefused(readJson, {deep.c_str(), ZoResult::beyondLimits, 1, 0});
}

TEST(VariantJson, ReadsWhatOthersWrite) {
  const struct {
    const wchar_t* text;
    ZoVariant value;
  } rows[] = {
      {L" null ", {}},
      {L"\t[true,false]\r\n", Array{true, false}},
      {L"-0", -0.0},
      {L"0", 0},
      {L"2147483647", 2147483647},
      {L"-2147483649", std::int64_t{-2147483649}},
      {L"1E2", 100.0},
      {L"0.10", 0.1},
      {L"1e-999", 0.0},
      {L"\"\\u00e4\\/\\b\\f\\n\\r\\t\\\"\\\\\\ud83d\\uDE00\xD83D\xDE00\"",
       L"\xE4/\b\f\n\r\t\"\\\xD83D\xDE00\xD83D\xDE00"},
      {L"{\"\":{},\"a\":[[]],\"$type\":\"x\"}",
       Dict{{L"", Dict{}}, {L"a", Array{Array{}}}, {L"$type", L"x"}}},
      {L"\xFEFF[1 , 2.0]", Array{1, 2.0}},
      {L"{\"\\u0024zo\":[\"BigInt\",5]}", std::int64_t{5}},
  };
  for (const auto& row : rows) {
    ZoVariant value;
    ZoJsonError error;
    EXPECT_EQ(ZoJson::parse(row.text, value, &error), 0) << row.text << error.column;
    EXPECT_EQ(value, row.value) << row.text;
  }
  using namespace std::string_view_literals;
  const struct {
    std::string_view bytes;
    int code;
  } bytes[] = {{"\"\xC3\xA4\"", 0},
               {"\xEF\xBB\xBF\"\xC3\xA4\"", 0},
               {"\"\0\xE4\0\"\0"sv, 0},
               {"\0\"\0\xE4\0\""sv, 0},
               {"\xFF\xFE\"\0\xE4\0\"\0"sv, 0},
               {"\xEF\xBB\xBF\xEF\xBB\xBF\"\xC3\xA4\"", ZoResult::notWellFormed},
               {"\"\xE4\"", ZoResult::wrongEncoding},
               {"\"\0\xE4\0\"\0 "sv, ZoResult::wrongEncoding},
               {"", ZoResult::notWellFormed}};
  for (const auto& row : bytes) {
    ZoVariant value;
    EXPECT_EQ(ZoJson::parse(row.bytes, value), row.code) << row.bytes;
    EXPECT_EQ(value, row.code == 0 ? ZoVariant(L"\xE4") : ZoVariant()) << row.bytes;
  }
}

TEST(VariantJson, FilesAreReadAndSavedWhole) {
  const TempFolder folder;
  const auto path = folder.path() / "a.json";
  const ZoFileName name(path.wstring());
  const ZoVariant value(Dict{{L"\xE4", 1.5}});
  ZoVariant read;
  ZoJsonError error;
  EXPECT_EQ(ZoJson::load(name, read, &error), ZoResult::refused);
  EXPECT_EQ(error.line, 0u);
  EXPECT_EQ(ZoJson::save(name, value, ZoJson::kCompact), 0);
  EXPECT_EQ(fileBytes(path), "{\"\xC3\xA4\":1.5}\n");
  EXPECT_EQ(ZoJson::load(name, read, &error), 0);
  EXPECT_EQ(read, value);
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "write"});
  EXPECT_EQ(ZoJson::save(name, nested(5)), ZoResult::refused);
  EXPECT_EQ(ZoJson::save(name, nested(300)), ZoResult::beyondLimits);
  files.arm({});
  EXPECT_EQ(ZoJson::load(name, read), 0);
  EXPECT_EQ(read, value);
}

// Every cut, and mutations, of what both forms write.
TEST_P(VariantForms, CutsAndMutationsAreRefusedOrReadBack) {
  std::mt19937_64 random(5);
  const char* const wanted = std::getenv("ZO_MUTATIONS");
  const int rounds = wanted ? std::atoi(wanted) : 1500;
  const Form& form = GetParam();
  ZoString text;
  ASSERT_EQ(form.write(anyValue(random, 3), text), 0);
  for (int i = 0; text.length() < 300 && i < 100; ++i)
    ASSERT_EQ(form.write(anyValue(random, 4), text), 0);
  std::wstring whole(text.view());
  while (whole.back() == L'\n') whole.pop_back();
  ZoVariant value;
  ZoXMLError error;
  for (std::size_t length = 0; length < std::min<std::size_t>(whole.size(), 600); ++length)
    EXPECT_NE(form.read(std::wstring_view(whole).substr(0, length), value, error), 0) << length;
  for (int i = 0; i < rounds; ++i) {
    std::wstring mutated = whole;
    for (auto changes = 1 + random() % 3; changes > 0; --changes) {
      const std::size_t from = random() % mutated.size();
      const std::size_t length = random() % 9;
      if (random() % 2) mutated.erase(random() % mutated.size(), random() % 4);
      mutated.insert(random() % (mutated.size() + 1),
                     whole.substr(std::min(from, whole.size()), length));
    }
    if (form.read(mutated, value, error) == 0) expectRoundTrip(form, value);
    if (HasFatalFailure()) FAIL() << mutated;
  }
}

// ---- The documents ----

ZoVariant documentsTree() {
  ZoPoint weighted(1, 2, 3);
  weighted.w = 0.5;
  const Dict bolt{{L"count", 4},
                  {L"length", ZoVariant(12.5, ZoTypeCode::Length, 0x8001)},
                  {L"name", L"Bolt <M8> & \"nut\""},
                  {L"odd\tkey", L"line\r\n"},
                  {L"serial", std::int64_t{17}},
                  {L"spare", {}},
                  {L"visible", true}};
  return Dict{{L"id", kGuid},
              {L"parts",
               Array{ZoVariant(bolt, ZoTypeCode::Part), ZoVariant(L"DIN 912", ZoTypeCode::Catalog),
                     0.25, -0.0, std::nan(""), bits(0x7FF8000000000001), ZoPoint(1, -2.5, 1e-7),
                     ZoVariant(weighted, ZoTypeCode::XPosition), ZoVector(0, 0, 1),
                     ZoVariant(std::wstring_view(L"\xD800half", 5)),
                     ZoVariant(reinterpret_cast<void*>(0x1234)), ZoVariant(std::int64_t{1} << 40),
                     ZoVariant(Array{}, ZoTypeCode::List)}},
              {L"$zo", L"a key like any other"}};
}

TEST(VariantFormsDocument, AreWhatTheDocumentsShow) {
  const TempFolder folder;
  const auto path = folder.path() / "value";
  const ZoFileName name(path.wstring());
  ZoXMLClass document;
  ASSERT_EQ(ZoXMLClass::fromVariant(documentsTree(), document), 0);
  ASSERT_EQ(document.save(name), 0);
  EXPECT_EQ(blockOf("docs/formats/xml.md", "xml"), fileBytes(path)) << fileBytes(path);
  ASSERT_EQ(ZoJson::save(name, documentsTree()), 0);
  EXPECT_EQ(blockOf("docs/formats/json.md", "json"), fileBytes(path)) << fileBytes(path);
}

}  // namespace
