// GUIDs as text: the mixed-case form, and texts of every wrong shape.
#include <gtest/gtest.h>
#include <zo/variant/guid.h>

#include <cstring>
#include <cwchar>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

namespace {

constexpr _GUID kSample = {
    0xABCDEF01, 0xABCD, 0xEFAB, {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 0x07, 0x18}};
constexpr wchar_t kText[] = L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}";

bool same(const _GUID& a, const _GUID& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

ZoString textOf(const _GUID& guid, bool braces = true) {
  ZoString text;
  return ZoGuid2String(guid, text, braces);
}

TEST(Guid, IsWrittenWithItsThirdGroupInLowerCase) {
  EXPECT_EQ(textOf(kSample), kText);
  EXPECT_EQ(textOf(kSample, false), std::wstring_view(kText).substr(1, 36));
  wchar_t buffer[ZoGuidTextSize];
  ZoGuid2String(kSample, buffer, true);
  EXPECT_STREQ(buffer, kText);
  _GUID guid = kSample;
  ZoSetNullGuid(guid);
  EXPECT_EQ(textOf(guid), L"{00000000-0000-0000-0000-000000000000}");
}

// The same through the runtime's own formatting.
TEST(Guid, AgreesWithThePrintedFormatAndReadsBack) {
  std::mt19937 random(8);
  for (int i = 0; i < 500; ++i) {
    _GUID guid;
    for (size_t n = 0; n < sizeof guid; ++n)
      reinterpret_cast<unsigned char*>(&guid)[n] = static_cast<unsigned char>(random());
    wchar_t expected[64];
    const unsigned char* d = guid.Data4;
    std::swprintf(expected, 64, L"{%08lX-%04hX-%04hx-%02hX%02hX-%02hX%02hX%02hX%02hX%02hX%02hX}",
                  guid.Data1, guid.Data2, guid.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6],
                  d[7]);
    EXPECT_EQ(textOf(guid), expected);
    _GUID read = kSample;
    EXPECT_EQ(ZoString2Guid(expected, read), 0);
    EXPECT_TRUE(same(read, guid));
  }
}

TEST(Guid, TextsOfOtherShapesAreTakenOnlyWhereTheDelimitersStandInOrder) {
  struct Case {
    const wchar_t* text;
    const wchar_t* guid;  // null: refused
  };
  for (const Case& c :
       std::vector<Case>{{L"{abcdef01-abcd-EFAB-a1b2-c3d4e5f60718}", kText},
                         {L"id = {ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718} and more", kText},
                         {L"{1-2-3-4-010203040506}", L"{00000001-0002-0003-0004-010203040506}"},
                         {L"{1-2-3-4-010203040506xyz}", L"{00000001-0002-0003-0004-010203040506}"},
                         {L"{ABCDEF0199-ABCD9-efab9-A1B29-C3D4E5F607189}", kText},
                         {L"{1-2-3-4-1 2 3 4 5 6}", L"{00000001-0002-0003-0004-010203040506}"},
                         {L"", nullptr},
                         {L"{}", nullptr},
                         {L"{----}", nullptr},
                         {L"ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718", nullptr},
                         {L"ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}", nullptr},
                         {L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718", nullptr},
                         {L"{ABCDEF01-ABCD-efab-A1B2C3D4E5F60718}", nullptr},
                         {L"{ABCDEF01ABCDefabA1B2C3D4E5F60718}", nullptr},
                         {L"}ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718{", nullptr},
                         {L"(ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718)", nullptr},
                         {L"{GBCDEF01-ABCD-efab-A1B2-C3D4E5F60718}", nullptr},
                         {L"{ABCDEF01-GBCD-efab-A1B2-C3D4E5F60718}", nullptr},
                         {L"{ABCDEF01-ABCD-gfab-A1B2-C3D4E5F60718}", nullptr},
                         {L"{ABCDEF01-ABCD-efab-G1B2-C3D4E5F60718}", nullptr},
                         {L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F607}", nullptr},
                         {L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F607G8}", nullptr},
                         {L"{ABCDEF01-ABCD-efab-A1B2-}", nullptr}}) {
    _GUID guid = {1, 2, 3, {4}};
    const _GUID before = guid;
    EXPECT_EQ(ZoString2Guid(c.text, guid), c.guid ? 0 : 1)
        << testing::PrintToString(ZoString(c.text));
    if (c.guid) {
      EXPECT_EQ(textOf(guid), c.guid);
    } else {
      EXPECT_TRUE(same(guid, before)) << testing::PrintToString(ZoString(c.text));
    }
  }
  EXPECT_EQ(
      [] {
        _GUID guid;
        return ZoString2Guid(nullptr, guid);
      }(),
      1);
}

TEST(Guid, ATextCutAnywhereIsRefused) {
  for (unsigned int n = 0; n < 38; ++n) {
    _GUID guid = kSample;
    EXPECT_EQ(ZoString2Guid(ZoString(kText, n), guid), 1) << n;
    EXPECT_TRUE(same(guid, kSample));
  }
}

}  // namespace
