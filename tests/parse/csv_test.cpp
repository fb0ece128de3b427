// Tables of text: what is read, what is told of bad rows, and that what is written reads back.
#include "parse/csv_reference.h"

#include <gtest/gtest.h>
#include <zo/parse.h>
#include <zo/results.h>

#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

namespace {

using zo::test::ReferenceTable;
using Table = std::vector<std::vector<std::wstring>>;

// "1 a|b" for the row of line 1, and behind it what is wrong with it.
std::wstring shown(std::wstring_view text, const ZoCsvFormat& format) {
  ZoCsvReader reader(text, format);
  std::wstring out;
  while (reader.next()) {
    out += std::to_wstring(reader.line()) + L" ";
    for (const std::wstring_view& field : reader)
      (out += field) += &field == reader.end() - 1 ? L"" : L"|";
    if (reader.fault() != ZoCsvReader::kNone) (out += L" !").append(reader.message());
    out += L"\n";
  }
  return out;
}

TEST(Csv, Rows) {
  constexpr ZoCsvFormat kComma{.separator = L','}, kNoQuote{.separator = L',', .quote = 0},
      kLines{.separator = L',', .emptyLines = ZoCsvFormat::kAreRows},
      kOther{.separator = L'\x1', .quote = L'\''};
  const struct {
    std::wstring_view text;
    ZoCsvFormat format;
    std::wstring_view rows;
  } kCases[] = {
      {L"", kComma, L""},
      {L"\xFEFF", kComma, L""},
      {L"\xFEFF"
       L"a,b\r\nc,d\n,\re,",
       kComma, L"1 a|b\n2 c|d\n3 |\n4 e|\n"},
      {L"\r\n\n\ra\n\n\n", kComma, L"4 a\n"},
      {L"\na\r\r\n", kLines, L"1 \n2 a\n3 \n"},
      {L"\"a,\"\"b\"\"\",\"\"\n\"c\r\nd\re\",\"\"\"\"\nf,g", kComma,
       L"1 a,\"b\"|\n2 c\r\nd\re|\"\n5 f|g\n"},
      {L" \"a\",5\" x 7\"\n", kComma, L"1  \"a\"|5\" x 7\"\n"},
      {L"'a','b''c'\x0001'd'e\n", kOther,
       L"1 a,'b''c'|de !line 1, column 4: text behind a closing quote\n"},
      {L"\"a\",b\"\n", kNoQuote, L"1 \"a\"|b\"\n"},
      // Bad rows.
      {L"a,b\nc\nd,e,f\ng,h", kComma,
       L"1 a|b\n2 c !line 2, column 2: expected 2 fields, found 1\n"
       L"3 d|e|f !line 3, column 5: expected 2 fields, found 3\n4 g|h\n"},
      {L"a,\"b\" c,d\n\"e\"\"\" \"f\"\n", kComma,
       L"1 a|b c|d !line 1, column 6: text behind a closing quote\n"
       L"2 e\" \"f\" !line 2, column 6: text behind a closing quote\n"},
      {L"a,\"b\r\n\"\"c,\",d\n\"\"x\ne,f", kComma,
       L"1 a|b\r\n\"c,|d\n3 x !line 3, column 3: text behind a closing quote\n"
       L"4 e|f !line 4, column 4: expected 3 fields, found 2\n"},
      {L"a,b\n1,\"2,3\n4,\"\"\n5,6\"\"", kComma,
       L"1 a|b\n2 1|\"2|3 !line 2, column 3: a quote that is not closed\n3 4|\n"
       L"4 5|6\"\"\n"},
      {L"\"a\nb\"x,\"c\n", kComma, L"1 a\nbx|\"c !line 2, column 3: text behind a closing quote\n"},
      {L"a,\"", kComma, L"1 a|\" !line 1, column 3: a quote that is not closed\n"},
      // The separator is found.
      {L"a;b,c;d\n", {}, L"1 a|b,c|d\n"},
      {L"\n\"x;;;\"\"\"\tb\n", {}, L"2 x;;;\"|b\n"},
      {L"A title\n1;2,3;4\n",
       {},
       L"1 A title\n2 1|2,3|4 !line 2, column 3: expected 1 field, found 3\n"},
      {L"\";\"|5\";\"|c\n", {}, L"1 ;|5\";\"|c\n"},
      {L"sep=|\r\na;b|c\n", {}, L"2 a;b|c\n"},
      {L"sep=;", {}, L""},
      {L"sep=;\n", kComma, L"1 sep=;\n"},
      {L"sep=x\n", {}, L"1 sep=x\n"},
      {L"\"a;b\n", {}, L"1 \"a|b !line 1, column 1: a quote that is not closed\n"},
      // No format.
      {L"a\n", {.separator = L'"'}, L""},
      {L"a\n", {.separator = L'\n'}, L""},
  };
  for (const auto& [text, format, rows] : kCases)
    EXPECT_EQ(shown(text, format), std::wstring(rows)) << ZoString(text).toUtf8();
  ZoCsvReader bad(L"a", {.quote = L'\r'});
  EXPECT_EQ(bad.fault(), ZoCsvReader::kBadFormat);
  EXPECT_FALSE(bad.next() || bad.message().isEmpty());
}

TEST(Csv, ColumnsByNameAndValues) {
  const ZoString text =
      L"Name; L\x00C4nge ;n;name\n\"M8 \"\"x\"\"\"; 1,5 "
      L";-7;x\nM10;1e999;99999999999999999999\n;1.5;\n"
      L"\"a\nb\";inf;7 x;\n";
  ZoCsvReader table(text, {.decimal = L','});
  EXPECT_EQ(table.column(L"n"), ZoCsvReader::npos) << "no header yet";
  ASSERT_EQ(table.readHeader(), 0);
  EXPECT_EQ(table.separator(), L';');
  EXPECT_EQ(table.columns(), 4u);
  EXPECT_EQ(table.columnName(1), L"L\x00C4nge");
  EXPECT_EQ(table.columnName(-1), L"");
  EXPECT_EQ(table.column(ZoString(L"NAME ")), 0u) << "the first of equal ones";
  EXPECT_EQ(table.column(L"l\x00E4nge"), 1u);
  EXPECT_EQ(table.column(L"x"), ZoCsvReader::npos);

  double real = -1;
  std::int64_t integer = -1;
  ZoString string = L"old";
  ASSERT_TRUE(table.next());
  EXPECT_EQ(table.field(L"name"), L"M8 \"x\"");
  EXPECT_EQ(table.text(0, string), 0);
  EXPECT_EQ(string, L"M8 \"x\"");
  EXPECT_EQ(table.real(L"L\x00E4nge", real), 0);
  EXPECT_EQ(real, 1.5);
  EXPECT_EQ(table.integer(2u, integer), 0);
  EXPECT_EQ(integer, -7);
  EXPECT_EQ(table.real(L"n", real), 0);
  EXPECT_EQ(real, -7);
  ASSERT_TRUE(table.next());
  EXPECT_EQ(table.fault(), ZoCsvReader::kFewerFields);
  EXPECT_EQ(table.real(1, real), ZoResult::overflow);
  EXPECT_EQ(table.integer(2, integer), ZoResult::overflow);
  for (const int column : {3, -1, 4}) {
    EXPECT_EQ(table.text(column, string), ZoResult::refused);
    EXPECT_EQ(table.field(column), L"");
    EXPECT_EQ(table.where(column), L"line 3, column 31") << "the end of the row";
  }
  EXPECT_EQ(table.text(L"x", string), ZoResult::refused);
  ASSERT_TRUE(table.next());
  for (const wchar_t* const name : {L"Name", L"L\x00C4nge"})  // none, and another decimal character
    EXPECT_EQ(table.real(name, real), ZoResult::refused);
  EXPECT_EQ(table.integer(1, integer), ZoResult::refused);
  ASSERT_TRUE(table.next());
  EXPECT_EQ(table.integer(2, integer), ZoResult::refused);
  EXPECT_EQ(table.where(L"name"), L"line 5, column 1");
  EXPECT_EQ(table.where(L"n"), L"line 6, column 8");
  EXPECT_EQ(std::tie(real, integer, string),
            std::make_tuple(-7.0, std::int64_t{-7}, ZoString(L"M8 \"x\"")));
  EXPECT_EQ(table.real(1, real), 0);
  EXPECT_EQ(real, std::numeric_limits<double>::infinity());
  EXPECT_FALSE(table.next());
  EXPECT_EQ(table.fields(), 0u);
  EXPECT_EQ(table.readHeader(), ZoResult::refused);
  EXPECT_EQ(table.column(L"n"), ZoCsvReader::npos);
}

// ---- Any text, against a reader that is plain ----

void expectAsReference(std::wstring_view text, wchar_t separator, wchar_t quote) {
  const ReferenceTable reference(text, separator, quote);
  ZoCsvReader reader(text, {.separator = separator, .quote = quote});
  for (const auto& row : reference.rows) {
    ASSERT_TRUE(reader.next());
    ASSERT_EQ(std::vector<std::wstring>(reader.begin(), reader.end()), row.fields);
    ASSERT_EQ(reader.line(), row.line);
    const ZoCsvReader::Fault fault = reader.fault();
    ASSERT_EQ(fault == ZoCsvReader::kOpenQuote         ? 'o'
              : fault == ZoCsvReader::kTextBehindQuote ? 't'
                                                       : 0,
              row.fault);
    ASSERT_EQ(fault == ZoCsvReader::kNone, reader.message().isEmpty());
    for (unsigned i = 0; i <= reader.fields(); ++i) ASSERT_FALSE(reader.where(i).isEmpty());
  }
  ASSERT_FALSE(reader.next());
}

TEST(Csv, EveryCutOfASampleAndAnyTextReadsAsAPlainReaderDoes) {
  const std::wstring sample =
      L"\xFEFFname,a long field that is more than eight units,\"q\"\r\n\"x\"\"y\",\"\r\n,\r\",z\n\r"
      L"1,\"2\" 3,\"4\nlast,,";
  for (std::size_t cut = 0; cut <= sample.size(); ++cut) {
    ASSERT_NO_FATAL_FAILURE(expectAsReference(sample.substr(0, cut), L',', L'"')) << cut;
    ASSERT_NO_FATAL_FAILURE(expectAsReference(sample.substr(cut), L',', L'"')) << cut;
  }
#ifdef ZO_GUARDED
  constexpr int kRounds = 5000;
#else
  constexpr int kRounds = 100000;
#endif
  constexpr wchar_t kUnits[] = L"\"\"\"\",,,\r\n\n\rab\xFEFF\xD83D;";
  std::mt19937 random(3);
  for (int i = 0; i < kRounds; ++i) {
    std::wstring text(random() % 30, L' ');
    for (wchar_t& c : text) c = kUnits[random() % std::size(kUnits)];  // zeros, too
    ASSERT_NO_FATAL_FAILURE(expectAsReference(text, L',', i % 8 ? L'"' : L'\0'))
        << ZoString(text).toUtf8();
  }
}

// ---- Writing ----

Table tableOf(std::wstring_view text, const ZoCsvFormat& format) {
  Table table;
  ZoCsvReader reader(text, format);
  while (reader.next()) {
    table.emplace_back(reader.begin(), reader.end());
    EXPECT_TRUE(reader.fault() == ZoCsvReader::kNone ||
                reader.fault() >= ZoCsvReader::kFewerFields);
  }
  return table;
}

TEST(Csv, WhatIsWrittenLooksLikeThis) {
  ZoCsvWriter table({.separator = L';', .decimal = L','});
  EXPECT_EQ(table.row(L"name", ZoString(L"a|b"), std::wstring(L"c")), 0);
  EXPECT_EQ(table.row(L'x', 1.5, -7, std::uint64_t{18446744073709551615u}), 0);
  EXPECT_EQ(table.rowOf(std::vector<std::wstring>{L"a|b", L"5\" x", L"c;d", L"e\rf", L""}), 0);
  EXPECT_EQ(table.row(L""), 0);
  EXPECT_EQ(table.rowOf(std::vector<double>{0.1f, 1e300}), 0);
  table.add(L"not ended");
  EXPECT_EQ(
      table.text(),
      L"name;\"a|b\";c\r\nx;1,5;-7;18446744073709551615\r\na|b;\"5\"\" x\";\"c;d\";\"e\rf\";\r\n"
      L"\"\"\r\n0,10000000149011612;1e+300\r\n");
  EXPECT_EQ(table.endRow(), 0);
  EXPECT_TRUE(table.text().ends_with(L"\r\nnot ended\r\n"));

  ZoCsvWriter all({.lineEnd = ZoCsvFormat::kLf, .quotes = ZoCsvFormat::kAlways});
  EXPECT_EQ(all.row(L"a", 1, L""), 0);
  EXPECT_EQ(all.row(L""), 0);
  EXPECT_EQ(all.text(), L"\"a\",\"1\",\"\"\n\"\"\n");
}

TEST(Csv, WhatCannotBeWrittenIsRefusedAsAWholeRow) {
  ZoCsvWriter plain({.separator = L'\t', .quote = ZoCsvFormat::kNoQuote});
  EXPECT_EQ(plain.row(L"a\"", L"b,c"), 0);
  for (const wchar_t* const field : {L"a\tb", L"a\rb", L"\n"})
    EXPECT_EQ(plain.row(L"x", field, L"y"), ZoResult::refused);
  EXPECT_EQ(plain.row(L""), ZoResult::refused) << "an empty line";
  EXPECT_EQ(plain.endRow(), ZoResult::refused) << "no field";
  EXPECT_EQ(plain.row(L"", L""), 0);
  EXPECT_EQ(plain.text(), L"a\"\tb,c\r\n\t\r\n");
  ZoCsvWriter first({.quote = ZoCsvFormat::kNoQuote, .emptyLines = ZoCsvFormat::kAreRows});
  EXPECT_EQ(first.row(L"\xFEFF"
                      L"a"),
            ZoResult::refused);
  EXPECT_EQ(first.row(L""), 0);
  EXPECT_EQ(first.row(L"\xFEFF"
                      L"a"),
            0);
  EXPECT_EQ(first.text(),
            L"\r\n\xFEFF"
            L"a\r\n");
  ZoCsvWriter bad({.separator = L'"'});
  EXPECT_EQ(bad.row(L"a"), ZoResult::refused);
  EXPECT_EQ(bad.text(), L"");
}

TEST(Csv, WhatIsWrittenReadsBack) {
#ifdef ZO_GUARDED
  constexpr int kRounds = 3000;
#else
  constexpr int kRounds = 50000;
#endif
  constexpr wchar_t kUnits[] = L"\"\"',;\t|\r\n\r\nsep=a \xFEFF\xD83D\xDE00";
  constexpr wchar_t kSeparators[] = {0, L',', L';', L'\t', L'|', L'a', L' ', 0xD83D, L'\x1'};
  std::mt19937 random(5);
  for (int i = 0; i < kRounds; ++i) {
    Table table(random() % 4);
    for (auto& row : table) {
      row.resize(1 + random() % 4);
      for (std::wstring& field : row) {
        field.resize(random() % 12 * (random() % 3 > 0));
        for (wchar_t& c : field) c = kUnits[random() % std::size(kUnits)];
      }
      if (random() % 16 == 0) row[0] = random() % 2 == 0 ? L"sep=;" : L"sep=";
    }
    ZoCsvFormat format{.separator = kSeparators[random() % std::size(kSeparators)]};
    if (random() % 4 == 0) format.quote = L'\'';
    if (random() % 4 == 0) format.lineEnd = ZoCsvFormat::kLf;
    if (random() % 4 == 0) format.quotes = ZoCsvFormat::kAlways;
    ZoCsvWriter writer(format);
    for (const auto& row : table) ASSERT_EQ(writer.rowOf(row), 0);
    const std::wstring text(writer.text());
    ASSERT_EQ(tableOf(text, format), table) << ZoString(text).toUtf8();
    format.emptyLines = ZoCsvFormat::kAreRows;
    ASSERT_EQ(tableOf(text, format), table) << ZoString(text).toUtf8();
    if (std::wstring_view(L",;\t|").find(format.separator) == std::wstring_view::npos) continue;
    format.separator = ZoCsvFormat::kDetect;
    ASSERT_EQ(tableOf(text, format), table) << ZoString(text).toUtf8();
  }
}

TEST(Csv, VeryLongLinesAndManyQuotes) {
#ifdef ZO_GUARDED
  constexpr std::size_t kOrdinary = 1;
#else
  constexpr std::size_t kOrdinary = 4;
#endif
  const std::size_t length = (std::getenv("ZO_TEST_LONG") ? 100 : kOrdinary) << 19;
  for (const std::wstring_view unit :
       {L"a", L",", L"\"", L"\"\"\n", L"\"a\n", L"\"a\"\"\n", L"\n", L"\"\"\"\"x,"}) {
    std::wstring text;
    text.reserve(length);
    while (text.size() + unit.size() < length) text += unit;
    ZoCsvReader reader(text);
    std::size_t rows = 0;
    while (reader.next()) ++rows;
    EXPECT_GE(rows, unit == L"\n" ? 0u : 1u);
    EXPECT_LE(rows, length / unit.size() + 1);
  }
}

}  // namespace
