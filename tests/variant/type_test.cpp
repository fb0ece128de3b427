// Names and bases of type codes, texts of flags, raw bytes as text.
#include <gtest/gtest.h>
#include <zo/system/unit_text.h>
#include <zo/text/containers/array.h>
#include <zo/variant/type.h>

#include <fstream>
#include <map>
#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/documents.h"
#include "support/printers.h"
#include "variant/code_names.h"

namespace {

ZoTypeCode code(unsigned int value) { return static_cast<ZoTypeCode>(value); }
unsigned int base(unsigned int value) {
  return static_cast<unsigned int>(ZoType::baseCode(code(value)));
}
ZoString name(unsigned int value) { return ZoType::codeToString(code(value)); }

TEST(TypeCode, HasTheBaseOfItsRange) {
  const std::map<unsigned int, unsigned int> bases = {
      {0, 0x2000},      {1000, 0x2400},   {1001, 0x2700},   {1002, 0x2400},   {1006, 0x2000},
      {1010, 0x2500},   {1012, 0x2600},   {1014, 0x2000},   {1040, 0x2300},   {1043, 0x2000},
      {1070, 0x2100},   {1072, 0x2000},   {0x2100, 0x2100}, {0x2200, 0x2200}, {0x22FF, 0x22FF},
      {0x2300, 0x2300}, {0x2400, 0x2400}, {0x2500, 0x2500}, {0x2600, 0x2600}, {0x2700, 0x2700},
      {0x2800, 0x2800}, {0x2900, 0x2900}, {0x2A01, 0x2000}};  // from a code to the next
  for (unsigned int c = 0; c < 0x3000; ++c) EXPECT_EQ(base(c), (--bases.upper_bound(c))->second);
  EXPECT_EQ(base(0xFFFFFFFF), 0x2000u);
}

// The names from a code on; the last one is that of a code without a name of its own.
TEST(TypeCode, IsNamedAsInStoredTextsAndFoundByItsNameInAnyCase) {
  for (const auto& [first, names] : std::vector<std::pair<unsigned int, const wchar_t*>>{
           {0x2000, L"NoType"},
           {1000, L"XString,XAppName,XControl,XLayer,String,XHandle,NoType"},
           {1010, L"XPoint,XPosition,Vector,XDirection,NoType"},
           {1040, L"XReal,XDistance,XScale,NoType"},
           {1069, L"NoType,XShort,XLong,NoType"},
           {0x2100, L"Int,Long,Short,Bool,Access,Int"},
           {0x2200, L"BigInt,Date,BigInt"},
           {0x22FE, L"BigInt,NoType"},
           {0x2300,
            L"Real,Length,Angle,Time,Mass,Area,Volume,Force,Spring rate,Pressure,Density,Speed,"
            L"Power,Torque,Thread factor,Linear density,Voltage,Force of current,Resistance,Real"},
           {0x2400, L"String,FName,Path,Macro,String,DLink,PLink,Chunk,String"},
           {0x2500, L"Point,Point"},
           {0x2600, L"Vector,Vector"},
           {0x2700, L"Sequence,Array,List,Sequence"},
           {0x2800,
            L"Dict,Firm,Catalog,Standard,Class,Part,Switch,Case,Admin,User,Guest,View,Callback,"
            L"Favorite,FavoriteClass,FavoriteCatalog,Dict"},
           {0x2900, L"Pointer,IUnknown,IDispatch,Pointer"},
           {0x2A00, L"Pointer,NoType"}}) {
    ZoArray<ZoString> expected;
    ZoString(names).split(L",", expected);
    for (unsigned int i = 0; i < expected.entries(); ++i) {
      const unsigned int c = first + i;
      EXPECT_EQ(name(c), expected[i]) << c;
      if (c == 0x22FF || (c != base(c) && expected[i] == name(base(c)))) continue;  // not its own
      ZoString upper = expected[i];
      EXPECT_EQ(ZoType::stringToCode(upper.toUpper()), code(c)) << c;
    }
  }
  for (const auto& [c, user] : std::vector<std::pair<unsigned int, const wchar_t*>>{
           {0x22FF, L"GUID"}, {0x2405, L"Link"}, {0x2804, L"Folder"}}) {
    EXPECT_STREQ(ZoType::codeToLocString(code(c)), user);
    EXPECT_EQ(ZoType::stringToCode(user), code(c)) << "of two links the first";
  }
  for (const wchar_t* unknown : {L"", L"Lengt", L"Length "})
    EXPECT_EQ(ZoType::stringToCode(unknown), ZoTypeCode::NoType);
}

TEST(TypeFlag, HasALetterAndSometimesAText) {
  EXPECT_STREQ(ZoType::flagsToString(0xFFFFFFFF), L"ABCDEFGHIJKLMNOPQRSTUVWXYZ");
  EXPECT_EQ(ZoType::stringToFlags(L"PAPA-a1["), 0x8001u);
  std::map<unsigned int, const wchar_t*> texts = {
      {0x1, L"Create List"},      {0x2, L"Visible in Browser"},    {0x4, L"Constant Value"},
      {0x40, L"Global Value"},    {0x80, L"Invisible in Browser"}, {0x100, L"Infopoint Value"},
      {0x800, L"Pre Processor"},  {0x1000, L"Mid Processor"},      {0x2000, L"Post Processor"},
      {0x4000, L"Objecter Type"}, {0x8000, L"Parameter"},          {0x20000, L"Return Value"},
      {0x40000, L"System Value"}, {0x100000, L"User Input"}};
  for (unsigned int bit = 0; bit < 32; ++bit) {
    const auto text = texts.find(1u << bit);
    EXPECT_STREQ(ZoType::flagToMessage(1u << bit), text == texts.end() ? L"No Flag" : text->second);
    if (text == texts.end()) continue;
    ZoString lower(text->second);
    EXPECT_EQ(ZoType::messageToFlag(lower.toLower()), 1u << bit);
  }
  EXPECT_STREQ(ZoType::flagToMessage(0x3), L"No Flag");
}

// docs/variant.md has a row for each code and each flag, which begins as the code has it and goes
// on with words on its meaning.
TEST(TypeCode, AndFlagHaveTheirRowsInTheDocument) {
  const auto bytes = [](const wchar_t* text) { return std::string(text, text + wcslen(text)); };
  std::set<std::string> wanted;
  char number[16];
  for (unsigned int c = 0; c < 0x3000; ++c) {
    if (!zo::findCode(code(c)) && c != 1012) continue;
    std::snprintf(number, sizeof number, c < 0x2000 ? "%u" : "0x%04X", c);
    const wchar_t* const unit = ZoUnitName(code(c), 0);
    const std::string cell = unit && *unit ? bytes(unit) + " " : "";
    const auto nameOf = [&](unsigned int value) {
      return value == 0x22FF ? "GUID" : bytes(name(value).data());
    };
    wanted.insert(std::string("| ") + number + " | " + nameOf(c) + " | " + nameOf(base(c)) + " | " +
                  cell + "| ");
  }
  for (unsigned int bit = 0; bit < 26; ++bit) {
    const std::string text = bytes(ZoType::flagToMessage(1u << bit));
    std::snprintf(number, sizeof number, "0x%X", 1u << bit);
    if (text != "No Flag")
      wanted.insert(std::string("| ") + static_cast<char>('A' + bit) + " | " + number + " | " +
                    text + " | ");
  }
  EXPECT_EQ(wanted.size(), 73u + 14u);

  std::ifstream document(zo::test::sourcePath("docs/variant.md"));
  for (std::string line; std::getline(document, line);) {
    auto row = wanted.upper_bound(line);
    if (row != wanted.begin() && line.starts_with(*--row) && line.size() > row->size() + 3)
      wanted.erase(row);
  }
  for (const std::string& row : wanted) ADD_FAILURE() << "docs/variant.md lacks: " << row;
}

TEST(Chunk, EveryByteComesBackAndNothingElseIsTaken) {
  std::vector<unsigned char> bytes(256);
  std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
  ZoString text;
  ZoType::chunkToString(bytes.data(), 256, text);
  EXPECT_EQ(text(0xA9 * 2, 4), L"A9AA");
  unsigned char* read = nullptr;
  unsigned int count = 99;
  for (const ZoString& form : {text, ZoString(text).toLower()}) {
    ASSERT_EQ(ZoType::stringToChunk(read, count, form), 0);
    const std::unique_ptr<unsigned char[]> owner(read);
    EXPECT_EQ(std::vector<unsigned char>(read, read + count), bytes);
  }
  for (const wchar_t* wrong : {L"0", L"0G", L"00 1", L" 00", L"0x00", L"\xFF10\xFF10"}) {
    read = bytes.data();
    EXPECT_EQ(ZoType::stringToChunk(read, count, wrong), 1);
    EXPECT_EQ(read, nullptr);
  }
}

}  // namespace
