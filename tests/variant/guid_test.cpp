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

ZoString textOf(const _GUID& guid, bool braces = true) {
  ZoString text;
  return ZoGuid2String(guid, text, braces);
}

// The third group is in lower case. The same through the runtime's own formatting.
TEST(Guid, AgreesWithThePrintedFormatAndReadsBack) {
  EXPECT_EQ(textOf(kSample), kText);
  EXPECT_EQ(textOf(kSample, false), std::wstring_view(kText).substr(1, 36));
  _GUID guid = kSample;
  ZoSetNullGuid(guid);
  EXPECT_EQ(textOf(guid), L"{00000000-0000-0000-0000-000000000000}");
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
    _GUID read = kSample;
    EXPECT_EQ(ZoString2Guid(expected, read), 0);
    EXPECT_EQ(textOf(read), expected);
  }
}

void expectRefused(const wchar_t* text) {
  _GUID guid = kSample;
  EXPECT_EQ(ZoString2Guid(text, guid), 1) << testing::PrintToString(ZoString(text));
  EXPECT_EQ(textOf(guid), kText);
}

TEST(Guid, TextsOfOtherShapesAreTakenOnlyWhereTheDelimitersStandInOrder) {
  constexpr wchar_t kShort[] = L"{00000001-0002-0003-0004-010203040506}";
  for (const auto& [text, expected] : std::vector<std::pair<const wchar_t*, const wchar_t*>>{
           {L"{abcdef01-abcd-EFAB-a1b2-c3d4e5f60718}", kText},
           {L"id = {ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718} and more", kText},
           {L"{ABCDEF0199-ABCD9-efab9-A1B29-C3D4E5F607189}", kText},
           {L"{1-2-3-4-010203040506}", kShort},
           {L"{1-2-3-4-010203040506xyz}", kShort},
           {L"{1-2-3-4-1 2 3 4 5 6}", kShort}}) {
    _GUID guid = {};
    EXPECT_EQ(ZoString2Guid(text, guid), 0);
    EXPECT_EQ(textOf(guid), expected);
  }
  for (const wchar_t* text :
       {L"{}", L"{----}", L"ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718",
        L"ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718}", L"{ABCDEF01-ABCD-efab-A1B2C3D4E5F60718}",
        L"}ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718{", L"(ABCDEF01-ABCD-efab-A1B2-C3D4E5F60718)",
        L"{GBCDEF01-ABCD-efab-A1B2-C3D4E5F60718}", L"{ABCDEF01-GBCD-efab-A1B2-C3D4E5F60718}",
        L"{ABCDEF01-ABCD-gfab-A1B2-C3D4E5F60718}", L"{ABCDEF01-ABCD-efab-G1B2-C3D4E5F60718}",
        L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F607}", L"{ABCDEF01-ABCD-efab-A1B2-C3D4E5F607G8}"})
    expectRefused(text);
  for (unsigned int n = 0; n < 38; ++n) expectRefused(ZoString(kText, n));  // cut anywhere
  _GUID guid;
  EXPECT_EQ(ZoString2Guid(nullptr, guid), 1);
}

}  // namespace
