// Searching, comparing and hashing against plain implementations written from their descriptions.
#include <windows.h>
// windows.h comes first here on purpose: the names below must not meet its macros.
#include <gtest/gtest.h>
#include <zo/text/string.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <cwctype>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

namespace {

std::wstring randomText(std::mt19937& random, const std::wstring& alphabet, size_t maxLength) {
  std::wstring text(random() % (maxLength + 1), L' ');
  for (wchar_t& c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

std::vector<unsigned int> positions(const std::wstring& text, const std::wstring& pattern,
                                    unsigned int start, bool fold) {
  std::vector<unsigned int> found;
  for (size_t at = start; at + pattern.size() <= text.size(); ++at) {
    const bool stands = std::equal(
        pattern.begin(), pattern.end(), text.begin() + static_cast<ptrdiff_t>(at),
        [=](wchar_t a, wchar_t b) { return fold ? std::towlower(a) == std::towlower(b) : a == b; });
    if (stands) found.push_back(static_cast<unsigned int>(at));
  }
  return found;
}

TEST(StringSearch, AgreesWithAPlainLoopForwardsAndBackwardsExactAndFolded) {
  std::mt19937 random(7);
  for (const std::wstring alphabet :
       {L"ab", L"aAbB", L"aA@`[{\u00E4\u00C4\u0101\u8000\uFFFF", L"abcdefghijklmnop"}) {
    for (int round = 0; round < 3000; ++round) {
      const std::wstring text = randomText(random, alphabet, 70);
      const size_t from = random() % (text.size() + 1);
      const std::wstring pattern =
          random() % 2 == 0 ? text.substr(from, random() % 20) : randomText(random, alphabet, 4);
      const ZoString s(text.c_str());
      const auto start = static_cast<unsigned int>(random() % (text.size() + 2));
      for (const auto cmp : {ZoString::exact, ZoString::ignoreCase}) {
        const auto expected = positions(text, pattern, start, cmp == ZoString::ignoreCase);
        const ZoString wanted(pattern.c_str());
        ASSERT_EQ(s.index(wanted, start, cmp), expected.empty() ? ZoString::npos : expected[0]);
        ASSERT_EQ(s.indexBack(wanted, start, cmp),
                  expected.empty() ? ZoString::npos : expected.back());
        const auto whole = positions(text, pattern, 0, cmp == ZoString::ignoreCase);
        ASSERT_EQ(s.startsWith(wanted, cmp), !whole.empty() && whole.front() == 0);
        ASSERT_EQ(s.endsWith(wanted, cmp),
                  !whole.empty() && whole.back() == text.size() - pattern.size());
      }
    }
  }
}

TEST(StringSearch, StartsPastTheEndAndEmptyPatternsNeverWrap) {
  const ZoString seven(L"abcdefg");
  EXPECT_EQ(seven.index(L"", 7), 7u);
  EXPECT_EQ(seven.indexBack(L"", 2), 7u);
  for (const unsigned int start : {8u, 0x7FFFFFFFu, 0xFFFFFFFEu, ZoString::npos}) {
    EXPECT_EQ(seven.index(L"g", start), ZoString::npos);
    EXPECT_EQ(seven.indexBack(L"g", start), ZoString::npos);
    EXPECT_EQ(seven.splitNext(L"g", start), ZoString::npos);
  }
}

TEST(StringCompare, PointerFormAndOperatorsOrderByCodeUnitTheStringFormByBytes) {
  std::mt19937 random(9);
  for (int round = 0; round < 5000; ++round) {
    const std::wstring a = randomText(random, L"aAb\u00FF\u0100\u8001", 5);
    const std::wstring b = randomText(random, L"aAb\u00FF\u0100\u8001", 5);
    const ZoString ours(a.c_str()), other(b.c_str());
    const int order = (a > b) - (a < b);
    const size_t bytes = std::min(a.size(), b.size()) * sizeof(wchar_t);
    const int byteOrder = std::memcmp(a.data(), b.data(), bytes);
    EXPECT_EQ(ours.compareTo(b.c_str()), order);
    EXPECT_EQ(ours.compareTo(other) <=> 0, (byteOrder ? byteOrder : order) <=> 0);
    EXPECT_EQ(ours <=> other, order <=> 0);
    EXPECT_EQ(ours == other, a == b);
    EXPECT_EQ(std::hash<ZoString>()(ours) == std::hash<ZoString>()(other), a == b);
  }
}

TEST(StringCompare, IgnoringCaseIsThePlatformsAnswer) {
  std::mt19937 random(10);
  const auto platform = [](const std::wstring& a, const std::wstring& b) {
    return CompareStringW(0x400, NORM_IGNORECASE, a.c_str(), static_cast<int>(a.size()), b.c_str(),
                          static_cast<int>(b.size())) -
           CSTR_EQUAL;
  };
  for (const std::wstring alphabet : {L"aAbB!\"#$%&()*+,./:;<=>?@[\\]^`{|}~", L"aA-_ '19zZ",
                                      L"aA\u00E4\u00C4sS\u00DF\u00AD", L"\u0430\u0410"}) {
    for (int round = 0; round < 4000; ++round) {
      const std::wstring a = randomText(random, alphabet, round % 2 ? 3 : 20);
      std::wstring b = round % 4 == 0 ? a : randomText(random, alphabet, 3);
      for (wchar_t& c : b) c = random() % 2 == 0 ? static_cast<wchar_t>(std::towupper(c)) : c;
      const ZoString ours(a.c_str());
      const int order = platform(a, b);
      ASSERT_EQ(ours.compareTo(b.c_str(), ZoString::ignoreCase), order);
      ASSERT_EQ(ours.equals(b, ZoString::ignoreCase), order == 0);
    }
  }
  const auto odd = static_cast<ZoString::caseCompare>(2);
  EXPECT_EQ(ZoString(L"A").compareTo(L"a", odd), 0) << "any value but exact";
  EXPECT_NE(ZoString(L"A").compareTo(ZoString(L"a"), odd), 0) << "only ignoreCase";
}

TEST(StringHash, ValuesAreThoseOfTheDescription) {
  EXPECT_EQ(ZoString(L"a").hash(), 0x00610020u);
  EXPECT_EQ(ZoString(L"a").hash(ZoString::ignoreCase), 0x61u);
  EXPECT_EQ(ZoString().hash(), 0u);
  std::mt19937 random(11);
  for (size_t length = 0; length < 70; ++length) {
    std::wstring text(length, L' ');
    for (wchar_t& c : text) c = static_cast<wchar_t>(random() % 3 ? random() % 0x80 : random());
    auto exact = static_cast<unsigned int>(length);
    auto folded = exact;
    for (size_t i = 0; i < length; i += 2) {
      const unsigned int pair =
          i + 1 < length ? text[i] | unsigned{text[i + 1]} << 16 : unsigned{text[i]} << 16;
      exact = std::rotl(exact, 5) ^ pair;
    }
    for (const wchar_t c : text) {
      folded = std::rotl(folded, 5) ^ (c >= L'a' && c <= L'z' ? c - 0x20u : c);
    }
    const ZoString s{std::wstring_view(text)};
    EXPECT_EQ(s.hash(), exact) << length;
    EXPECT_EQ(s.hash(ZoString::ignoreCase), folded) << length;
  }
}

}  // namespace
