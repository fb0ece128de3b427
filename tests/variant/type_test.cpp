// Names and bases of type codes, texts of flags, raw bytes as text.
#include <gtest/gtest.h>
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

TEST(TypeCode, IsNamedAsInStoredTexts) {
  struct Names {
    unsigned int first;
    std::vector<const wchar_t*> names;
  };
  for (const Names& row : std::vector<Names>{
           {0x2000, {L"NoType"}},
           {0x2100, {L"Int", L"Long", L"Short", L"Bool", L"Access", L"Int"}},
           {1069, {L"NoType", L"XShort", L"XLong", L"NoType"}},
           {0x2200, {L"BigInt", L"Date", L"BigInt"}},
           {0x22FE, {L"BigInt", L"NoType"}},
           {0x2300, {L"Real",           L"Length",  L"Angle",
                     L"Time",           L"Mass",    L"Area",
                     L"Volume",         L"Force",   L"Spring rate",
                     L"Pressure",       L"Density", L"Speed",
                     L"Power",          L"Torque",  L"Thread factor",
                     L"Linear density", L"Voltage", L"Force of current",
                     L"Resistance",     L"Real"}},
           {1040, {L"XReal", L"XDistance", L"XScale", L"NoType"}},
           {0x2400,
            {L"String", L"FName", L"Path", L"Macro", L"String", L"DLink", L"PLink", L"Chunk",
             L"String"}},
           {1000,
            {L"XString", L"XAppName", L"XControl", L"XLayer", L"String", L"XHandle", L"NoType"}},
           {0x2500, {L"Point", L"Point"}},
           {1010, {L"XPoint", L"XPosition", L"Vector", L"XDirection", L"NoType"}},
           {0x2600, {L"Vector", L"Vector"}},
           {0x2700, {L"Sequence", L"Array", L"List", L"Sequence"}},
           {0x2800,
            {L"Dict", L"Firm", L"Catalog", L"Standard", L"Class", L"Part", L"Switch", L"Case",
             L"Admin", L"User", L"Guest", L"View", L"Callback", L"Favorite", L"FavoriteClass",
             L"FavoriteCatalog", L"Dict"}},
           {0x2900, {L"Pointer", L"IUnknown", L"IDispatch", L"Pointer"}},
           {0x2A00, {L"Pointer", L"NoType"}}}) {
    for (unsigned int i = 0; i < row.names.size(); ++i) {
      EXPECT_EQ(name(row.first + i), row.names[i]) << row.first + i;
      ZoString text(L"before");
      EXPECT_EQ(ZoType::codeToString(code(row.first + i), text), row.names[i]);
    }
  }
}

TEST(TypeCode, HasANameForUsersAndIsFoundByEitherNameInAnyCase) {
  EXPECT_EQ(userName(0x2000), L"No Type");
  EXPECT_EQ(userName(0x22FF), L"GUID");
  EXPECT_EQ(userName(0x2401), L"File");
  EXPECT_EQ(userName(0x2406), L"Link");
  EXPECT_EQ(userName(0x2804), L"Folder");
  EXPECT_EQ(userName(0x2902), L"Dispatch");
  for (const unsigned int unnamed : {1070u, 1071u, 0x21FFu})
    EXPECT_EQ(userName(unnamed), L"Integer");
  EXPECT_EQ(userName(1012), L"Vector");

  // Every code with a name of its own is found again, by both names.
  for (unsigned int c = 0; c < 0x3000; ++c) {
    const bool named = c == base(c) || name(c) != name(base(c));
    if (!named || c == 0x22FF) continue;
    if (c >= 0x2000 || base(c) != 0x2000) {
      EXPECT_EQ(ZoType::stringToCode(name(c).data()), code(c)) << c;
      ZoString upper = name(c);
      upper.toUpper();
      EXPECT_EQ(ZoType::stringToCode(upper), code(c)) << c;
    }
  }
  EXPECT_EQ(ZoType::stringToCode(L"guid"), ZoTypeCode::Guid);
  EXPECT_EQ(ZoType::stringToCode(L"Folder"), ZoTypeCode::Class);
  EXPECT_EQ(ZoType::stringToCode(L"Link"), ZoTypeCode::DLink) << "the first of two";
  EXPECT_EQ(ZoType::stringToCode(L"Vector"), ZoTypeCode::Vector);
  for (const wchar_t* unknown : {L"", L"Lengt", L"Length ", L"XDisplacement"})
    EXPECT_EQ(ZoType::stringToCode(unknown), ZoTypeCode::NoType);
  EXPECT_EQ(ZoType::stringToCode(nullptr), ZoTypeCode::NoType);
}

TEST(TypeFlag, LettersStandForTheBits0To25) {
  for (const auto& [flags, letters] : std::vector<std::pair<unsigned int, const wchar_t*>>{
           {0, L""},
           {0x3, L"AB"},
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
  EXPECT_STREQ(first, L"B");
  EXPECT_EQ(ZoType::stringToFlags(L"PAPA-a1["), 0x8001u);
  EXPECT_EQ(ZoType::stringToFlags(nullptr), 0u);
}

TEST(TypeFlag, HasATextAndIsFoundByItInAnyCase) {
  const std::vector<std::pair<unsigned int, const wchar_t*>> texts = {
      {0x1, L"Create List"},      {0x2, L"Visible in Browser"},    {0x4, L"Constant Value"},
      {0x40, L"Global Value"},    {0x80, L"Invisible in Browser"}, {0x100, L"Infopoint Value"},
      {0x800, L"Pre Processor"},  {0x1000, L"Mid Processor"},      {0x2000, L"Post Processor"},
      {0x4000, L"Objecter Type"}, {0x8000, L"Parameter"},          {0x20000, L"Return Value"},
      {0x40000, L"System Value"}, {0x100000, L"User Input"}};
  unsigned int known = 0;
  for (const auto& [flag, text] : texts) {
    EXPECT_STREQ(ZoType::flagToMessage(flag), text);
    ZoString lower(text);
    lower.toLower();
    EXPECT_EQ(ZoType::messageToFlag(text), flag);
    EXPECT_EQ(ZoType::messageToFlag(lower), flag);
    known |= flag;
  }
  for (unsigned int bit = 0; bit < 32; ++bit) {
    if (known >> bit & 1) continue;
    EXPECT_STREQ(ZoType::flagToMessage(1u << bit), L"No Flag") << bit;
  }
  for (const unsigned int mixed : {0u, 0x3u})
    EXPECT_STREQ(ZoType::flagToMessage(mixed), L"No Flag");
  for (const wchar_t* none : {L"", L"No Flag", L"Persistent", L"Inactive", L"Create"})
    EXPECT_EQ(ZoType::messageToFlag(none), 0u);
  EXPECT_EQ(ZoType::messageToFlag(nullptr), 0u);
}

TEST(TypeFlag, IsSetAndResetInTheResultOnly) {
  unsigned int word = 0x8001;
  EXPECT_EQ(ZoType::setFlag(word, 0x4), 0x8005u);
  EXPECT_EQ(ZoType::resetFlag(word, 0x1), 0x8000u);
  EXPECT_EQ(word, 0x8001u);
  EXPECT_TRUE(ZoType::isFlagged(word, 0x3));
  EXPECT_FALSE(ZoType::isFlagged(word, 0x6));
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
  EXPECT_STREQ(ZoType::flagToMessage(0x4), L"Konstante");
  EXPECT_STREQ(ZoType::flagToMessage(0x3), L"Keine");
  EXPECT_EQ(ZoType::messageToFlag(L"KONSTANTE"), 0x4u);
  EXPECT_EQ(ZoType::messageToFlag(L"Constant Value"), 0u) << "the current texts count";
  EXPECT_NE(zo::setTextLookup(nullptr), nullptr);
  EXPECT_STREQ(ZoType::flagToMessage(0x4), L"Constant Value");
}

TEST(Chunk, EveryByteComesBackAndNothingElseIsTaken) {
  std::mt19937 random(7);
  for (unsigned int size : {0u, 1u, 2u, 255u, 4096u}) {
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
