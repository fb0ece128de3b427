// Names and bases of type codes, texts of flags, raw bytes as text.
#include <gtest/gtest.h>
#include <zo/text/containers/array.h>
#include <zo/variant/type.h>

#include <cwchar>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"
#include "variant/type_texts.h"

namespace {

ZoTypeCode code(unsigned int value) { return static_cast<ZoTypeCode>(value); }
unsigned int base(unsigned int value) {
  return static_cast<unsigned int>(ZoType::baseCode(code(value)));
}
ZoString name(unsigned int value) { return ZoType::codeToString(code(value)); }
ZoString userName(unsigned int value) { return ZoType::codeToLocString(code(value)); }

TEST(TypeCode, HasTheBaseOfItsRange) {
  struct Range {
    unsigned int first, last, base;
  };
  const std::vector<Range> ranges = {
      {1000, 1000, 0x2400},     {1001, 1001, 0x2700},     {1002, 1005, 0x2400},
      {1010, 1011, 0x2500},     {1012, 1013, 0x2600},     {1040, 1042, 0x2300},
      {1070, 1071, 0x2100},     {0x2100, 0x21FF, 0x2100}, {0x2200, 0x22FE, 0x2200},
      {0x22FF, 0x22FF, 0x22FF}, {0x2300, 0x23FF, 0x2300}, {0x2400, 0x24FF, 0x2400},
      {0x2500, 0x25FF, 0x2500}, {0x2600, 0x26FF, 0x2600}, {0x2700, 0x27FF, 0x2700},
      {0x2800, 0x28FF, 0x2800}, {0x2900, 0x2A00, 0x2900}};
  for (unsigned int c = 0; c < 0x3000; ++c) {
    unsigned int expected = 0x2000;
    for (const Range& range : ranges) {
      if (c >= range.first && c <= range.last) expected = range.base;
    }
    EXPECT_EQ(base(c), expected) << c;
  }
  EXPECT_EQ(base(0xFFFFFFFF), 0x2000u);
}

// The names from a code on; the last one is that of a code without a name of its own.
TEST(TypeCode, IsNamedAsInStoredTexts) {
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
      EXPECT_EQ(name(first + i), expected[i]) << first + i;
      ZoString text(L"before");
      EXPECT_EQ(ZoType::codeToString(code(first + i), text), expected[i]);
    }
  }
}

TEST(TypeCode, HasANameForUsersAndIsFoundByEitherNameInAnyCase) {
  for (const auto& [c, expected] :
       std::vector<std::pair<unsigned int, const wchar_t*>>{{0x2000, L"No Type"},
                                                            {0x22FF, L"GUID"},
                                                            {0x2401, L"File"},
                                                            {0x2406, L"Link"},
                                                            {0x2804, L"Folder"},
                                                            {0x2902, L"Dispatch"},
                                                            {1070, L"Integer"},
                                                            {0x21FF, L"Integer"},
                                                            {1012, L"Vector"}})
    EXPECT_EQ(userName(c), expected);
  // Every code with a name of its own is found again.
  for (unsigned int c = 0; c < 0x3000; ++c) {
    const bool named = c == base(c) || name(c) != name(base(c));
    if (!named || c == 0x22FF) continue;
    ZoString upper = name(c);
    upper.toUpper();
    EXPECT_EQ(ZoType::stringToCode(name(c).data()), code(c)) << c;
    EXPECT_EQ(ZoType::stringToCode(upper), code(c)) << c;
  }
  EXPECT_EQ(ZoType::stringToCode(L"guid"), ZoTypeCode::Guid);
  EXPECT_EQ(ZoType::stringToCode(L"Folder"), ZoTypeCode::Class);
  EXPECT_EQ(ZoType::stringToCode(L"Link"), ZoTypeCode::DLink) << "the first of two";
  for (const wchar_t* unknown :
       std::vector<const wchar_t*>{L"", L"Lengt", L"Length ", L"XDisplacement", nullptr})
    EXPECT_EQ(ZoType::stringToCode(unknown), ZoTypeCode::NoType);
}

TEST(TypeFlag, LettersStandForTheBits0To25) {
  for (const auto& [flags, letters] : std::vector<std::pair<unsigned int, const wchar_t*>>{
           {0, L""},
           {0x8001, L"AP"},
           {0x2000000, L"Z"},
           {0xFC000000, L""},
           {0xFFFFFFFF, L"ABCDEFGHIJKLMNOPQRSTUVWXYZ"}}) {
    EXPECT_STREQ(ZoType::flagsToString(flags), letters);
    ZoString text(L"x");
    EXPECT_EQ(ZoType::flagsToString(flags, text), letters);
    EXPECT_EQ(ZoType::stringToFlags(letters), flags & 0x3FFFFFF);
  }
  const wchar_t* const first = ZoType::flagsToString(1);
  EXPECT_EQ(ZoType::flagsToString(2), first) << "one buffer, overwritten";
  EXPECT_EQ(ZoType::stringToFlags(L"PAPA-a1["), 0x8001u);
  EXPECT_EQ(ZoType::stringToFlags(nullptr), 0u);
}

TEST(TypeFlag, HasATextAndIsFoundByItInAnyCase) {
  unsigned int known = 0;
  for (const auto& [flag, text] :
       std::vector<std::pair<unsigned int, const wchar_t*>>{{0x1, L"Create List"},
                                                            {0x2, L"Visible in Browser"},
                                                            {0x4, L"Constant Value"},
                                                            {0x40, L"Global Value"},
                                                            {0x80, L"Invisible in Browser"},
                                                            {0x100, L"Infopoint Value"},
                                                            {0x800, L"Pre Processor"},
                                                            {0x1000, L"Mid Processor"},
                                                            {0x2000, L"Post Processor"},
                                                            {0x4000, L"Objecter Type"},
                                                            {0x8000, L"Parameter"},
                                                            {0x20000, L"Return Value"},
                                                            {0x40000, L"System Value"},
                                                            {0x100000, L"User Input"}}) {
    EXPECT_STREQ(ZoType::flagToMessage(flag), text);
    ZoString lower(text);
    lower.toLower();
    EXPECT_EQ(ZoType::messageToFlag(lower), flag);
    known |= flag;
  }
  for (unsigned int bit = 0; bit < 32; ++bit)
    EXPECT_EQ(ZoType::flagToMessage(1u << bit) == ZoString(L"No Flag"), (known >> bit & 1) == 0);
  for (const unsigned int mixed : {0u, 0x3u})
    EXPECT_STREQ(ZoType::flagToMessage(mixed), L"No Flag");
  for (const wchar_t* none : std::vector<const wchar_t*>{L"", L"No Flag", L"Create", nullptr})
    EXPECT_EQ(ZoType::messageToFlag(none), 0u);
}

TEST(TypeTexts, ComeFromTheInstalledLookup) {
  const zo::TextLookup before = zo::setTextLookup(
      [](zo::TextList list, unsigned int number, const wchar_t*) -> const wchar_t* {
        if (list == zo::TextList::TypeNames && number == 0x2301) return L"L\u00E4nge";
        if (list == zo::TextList::FlagTexts && number == 0x4) return L"Konstante";
        if (list == zo::TextList::FlagTexts && number == 0) return L"Keine";
        return nullptr;
      });
  EXPECT_EQ(before, nullptr);
  EXPECT_EQ(userName(0x2301), L"L\u00E4nge");
  EXPECT_EQ(ZoType::stringToCode(L"L\u00E4NGE"), ZoTypeCode::Length);
  EXPECT_EQ(name(0x2301), L"Length") << "stored texts stay";
  EXPECT_EQ(userName(0x2302), L"Angle");
  EXPECT_STREQ(ZoType::flagToMessage(0x3), L"Keine");
  EXPECT_EQ(ZoType::messageToFlag(L"KONSTANTE"), 0x4u);
  EXPECT_EQ(ZoType::messageToFlag(L"Constant Value"), 0u) << "the current texts count";
  EXPECT_NE(zo::setTextLookup(nullptr), nullptr);
  EXPECT_STREQ(ZoType::flagToMessage(0x4), L"Constant Value");
}

TEST(Chunk, EveryByteComesBackAndNothingElseIsTaken) {
  std::mt19937 random(7);
  for (unsigned int size : {0u, 1u, 255u, 4096u}) {
    std::vector<unsigned char> bytes(size);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    ZoString text(L"x");
    EXPECT_EQ(ZoType::chunkToString(bytes.data(), size, text).length(), 2 * size);
    for (int round = 0; round < 2; ++round) {
      unsigned char* read = nullptr;
      unsigned int count = 99;
      ASSERT_EQ(ZoType::stringToChunk(read, count, text), 0);
      const std::unique_ptr<unsigned char[]> owner(read);
      EXPECT_EQ(std::vector<unsigned char>(read, read + count), bytes);
      text.toLower();
    }
  }
  const unsigned char known[] = {0x00, 0x1F, 0xA0, 0xFF};
  ZoString text;
  EXPECT_EQ(ZoType::chunkToString(known, 4, text), L"001FA0FF");
  EXPECT_EQ(ZoType::chunkToString(nullptr, 4, text), L"");
  for (const wchar_t* wrong : {L"0", L"0G", L"00 1", L" 00", L"0x00", L"00-11", L"\xFF10\xFF10"}) {
    unsigned char byte = 0;
    unsigned char* read = &byte;
    unsigned int count = 99;
    EXPECT_EQ(ZoType::stringToChunk(read, count, wrong), 1);
    EXPECT_EQ(read, nullptr);
    EXPECT_EQ(count, 0u);
  }
}

}  // namespace
