// GUIDs as text: the mixed-case form, and texts of every wrong shape.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/variant/guid.h>
#include <zo/variant/variant.h>

#include <cwchar>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/printers.h"

namespace {

constexpr wchar_t kText[] = L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}";

ZoString textOf(const _GUID& guid) {
  ZoString text;
  return ZoGuid2String(guid, text);
}

// The third group is in lower case. The same through the runtime's own formatting.
TEST(Guid, AgreesWithThePrintedFormatAndReadsBack) {
  _GUID guid;
  std::mt19937 random(8);
  for (int i = 0; i < 500; ++i) {
    for (size_t n = 0; n < sizeof guid; ++n)
      reinterpret_cast<unsigned char*>(&guid)[n] = static_cast<unsigned char>(random());
    wchar_t expected[64];
    const unsigned char* d = guid.Data4;
    std::swprintf(expected, 64, L"{%08lX-%04hX-%04hx-%02hX%02hX-%02hX%02hX%02hX%02hX%02hX%02hX}",
                  guid.Data1, guid.Data2, guid.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6],
                  d[7]);
    EXPECT_EQ(textOf(guid), expected);
    guid = {};
    EXPECT_EQ(ZoString2Guid(expected, guid), 0);
    EXPECT_EQ(textOf(guid), expected);
  }
}

TEST(Guid, TextsOfOtherShapesAreTakenOnlyWhereTheDelimitersStandInOrder) {
  constexpr wchar_t kUntouched[] = L"{00000000-0000-0000-0000-000000000000}";
  std::vector<std::pair<ZoString, const wchar_t*>> cases = {
      {L"id = {abcdef01-abcd-EFAB-a1b2-c3d4e5f60718} and more", kText},
      {L"{ABCDEF0199-ABCD9-efab9-A1B29-C3D4E5F607189}", kText},
      {L"{1-2-3-4-010203040506xyz}", L"{00000001-0002-0003-0004-010203040506}"},
      {L"{1-2-3-4-1 2 3 4 5 6}", L"{00000001-0002-0003-0004-010203040506}"}};
  for (const wchar_t* refused :
       {L"{----}", L"ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}",
        L"}ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718{", L"{GBCDEF01-ABCD-efab-A1B2-C3D4E5F60718}",
        L"{ABCDEF01-ABCD-efab-G1B2-C3D4E5F60718}", L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F607G8}"})
    cases.emplace_back(refused, kUntouched);
  for (unsigned int n = 0; n < 38; ++n) cases.emplace_back(ZoString(kText, n), kUntouched);
  for (const auto& [text, expected] : cases) {
    _GUID guid = {};
    EXPECT_EQ(ZoString2Guid(text, guid), expected == kUntouched ? 1 : 0);
    EXPECT_EQ(textOf(guid), expected) << testing::PrintToString(text);
  }
}

TEST(Guid, IsAKeyOfEveryDictionary) {
  ZoHashDict<int, _GUID> hashed;
  ZoTree<int, _GUID> ordered;
  ZoVariant texts;
  for (unsigned char i = 0; i < 50; ++i) {  // differing in one byte or another
    _GUID guid = {};
    reinterpret_cast<unsigned char*>(&guid)[i % 16] = i;
    EXPECT_EQ(hashed.insertAt(guid, int{i}), 0);
    EXPECT_EQ(ordered.insertAt(guid, int{i}), 0);
    EXPECT_EQ(hashed.insertAt(guid, 99), 1);
    EXPECT_EQ(*ordered.at(guid), i);
    EXPECT_EQ(texts.put(ZoGuid2String(guid), int{i}), 0);
    EXPECT_EQ(texts.at(ZoGuid2String(guid).toLower())->asInt(), i);
  }
  EXPECT_TRUE(hashed.entries() == 50 && ordered.entries() == 50 && texts.entries() == 50);
}

}  // namespace
