// Texts read from files in whatever they are encoded, and saved whole or not at all.
#include <zo/files/text_file.h>
#include <zo/parse.h>

#include <string>
#include <utility>

#include "files/file_fixture.h"

namespace zo::test {
namespace {

using namespace std::string_literals;
using TextFile = FileTest;

TEST_F(TextFile, IsReadAsItsBytesSay) {
  const struct {
    std::string bytes;
    unsigned int codepage;
    std::wstring text;
  } kCases[] = {
      {"", 0, L""},
      {"a\r\nb", 0, L"a\r\nb"},
      {"\xEF\xBB\xBF", 0, L""},
      {"\xEF\xBB\xBF\xC3\xA4\xE9", 1252, L"\x00E4\xFFFD"},
      {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", 1252, L"\x00E4\x20AC\xD83D\xDE00"},
      {"caf\xE9", 1252, L"caf\x00E9"},  // not a beginning of UTF-8
      {"\x80\xE9", 1252, L"\x20AC\x00E9"},
      {"\xE9", 1251, L"\x0439"},
      {"\xFF\xFE"
       "a\0\x3D\xD8"s,
       0, L"a\xD83D"},
      {"\xFF\xFE"
       "a\0b"s,
       0, L"a\xFFFD"},
      {"\xFE\xFF\0a\x20\xAC"s, 0, L"a\x20AC"},
      {"a\0;\0b\0"s, 1252, L"a;b"},
      {"\xC3\xA4 bcdefg\0hi"s, 1252, L"\x00E4 bcdefg\0hi"s},
      {"ab\0cd"s, 1252, L"ab\0cd"s},
  };
  const ZoFileName file = name(L"t.csv");
  for (const auto& [bytes, codepage, expected] : kCases) {
    put(file, bytes);
    ZoString text = L"old";
    EXPECT_EQ(zoReadText(file, text, codepage), 0);
    EXPECT_EQ(text, expected) << text.toUtf8();
  }
  ZoString text = L"old";
  put(file, "\xE9");
  EXPECT_EQ(zoReadText(file, text, 65432), 1) << "no such code page";
  expectError(ERROR_INVALID_PARAMETER);
  EXPECT_EQ(zoReadText(name(L"absent"), text), 1);
  expectError(ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(text, L"old");
}

TEST_F(TextFile, WhatIsSavedReadsBack) {
  const ZoFileName file = name(L"t.csv");
  const std::wstring pairs =
      std::wstring(32 * 1024 - 1, L'x') + L"\xD83D\xDE00\x20AC";  // over blocks
  constexpr std::pair<ZoTextForm, const char*> kForms[] = {
      {ZoTextForm::utf8Marked, "\xEF\xBB\xBF\xC3\xA4"},
      {ZoTextForm::utf8, "\xC3\xA4"},
      {ZoTextForm::utf16, "\xFF\xFE\xE4"},
      {ZoTextForm::utf16BigEndian, "\xFE\xFF"}};
  for (const auto& [form, bytes] : kForms) {
    for (const std::wstring& wanted : {std::wstring(L"\x00E4\r\n,"), pairs, std::wstring()}) {
      ZoString text = L"old";
      ASSERT_EQ(zoSaveText(file, wanted, form), 0);
      if (wanted.size() == 4) {
        EXPECT_TRUE(bytesOf(file).starts_with(bytes));
      }
      ASSERT_EQ(zoReadText(file, text), 0);
      EXPECT_TRUE(text == wanted);
    }
  }
  EXPECT_EQ(listing(), Names{L"t.csv"});
  EXPECT_EQ(zoSaveText(ZoFileName(L"ftp://host/file"), L"a"), 3);
  constexpr const wchar_t* kNothing = nullptr;
  EXPECT_EQ(zoSaveText(file, kNothing, ZoTextForm::utf8), 0);
  EXPECT_EQ(bytesOf(file), "");
  EXPECT_EQ(zoSaveText(name(L"absent\\t.csv"), L"a"), 1);
}

TEST_F(TextFile, AFailedWriteLeavesTheOldFile) {
  const ZoFileName file = name(L"t.csv");
  put(file, "old");
  const std::wstring text(100'000, L'x');
  for (const Fault fault : {Fault::fail, Fault::shorten}) {
    for (int n = 1; n <= 4; ++n) {
      FaultyFiles faults;
      faults.arm({.fault = fault, .call = "write", .nth = n, .forEver = fault == Fault::shorten});
      EXPECT_EQ(zoSaveText(file, text), 1) << n;
      EXPECT_TRUE(faults.met());
      EXPECT_EQ(bytesOf(file), "old");
    }
  }
  FaultyFiles faults;
  faults.arm({.fault = Fault::fail, .call = "read", .error = ERROR_CRC});
  ZoString read = L"old";
  EXPECT_EQ(zoReadText(file, read), 1);
  expectError(ERROR_CRC);
  faults.arm({.fault = Fault::shorten, .call = "read"});
  EXPECT_EQ(zoReadText(file, read), 0) << "the rest is asked for";
  EXPECT_EQ(read, L"old");
  EXPECT_EQ(listing(), Names{L"t.csv"});
}

TEST_F(TextFile, ATableGoesThroughAFile) {
  const ZoFileName file = name(L"t.csv");
  ZoCsvWriter writer({.separator = L';'});
  ASSERT_EQ(writer.row(L"Name", L"L\x00E4nge"), 0);
  ASSERT_EQ(writer.row(L"\"M8\"\n", 12.5), 0);
  ASSERT_EQ(zoSaveText(file, writer.text()), 0);
  ZoString text;
  ASSERT_EQ(zoReadText(file, text), 0);
  ZoCsvReader reader(text);
  ASSERT_EQ(reader.readHeader(), 0);
  ASSERT_TRUE(reader.next());
  double length = 0;
  EXPECT_EQ(reader.real(L"l\x00E4nge", length), 0);
  EXPECT_EQ(length, 12.5);
  EXPECT_EQ(reader.field(0), L"\"M8\"\n");
}

}  // namespace
}  // namespace zo::test
