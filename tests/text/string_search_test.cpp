// Searching, comparing and hashing against plain implementations written from their descriptions.
#include <windows.h>
// windows.h comes first here on purpose: the names below must not meet its macros.
#include <gtest/gtest.h>
#include <zo/text/string.h>

#include <algorithm>
#include <bit>
#include <clocale>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

#include "platform/collation.h"

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
        ASSERT_EQ(s.subString(pattern.c_str(), start, cmp).start(), s.index(wanted, start, cmp));
        ASSERT_EQ(s.contains(wanted, cmp), !positions(text, pattern, 0, cmp != 0).empty());
      }
    }
  }
}

TEST(StringSearch, WhatIsNotAsciiFoldsAsTheRuntimesLocaleSays) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "German_Germany.1252"), nullptr);
  ASSERT_EQ(std::towlower(0xC4), 0xE4u) << "the locale must fold more than ASCII";
  std::wstring text(40, L'x');
  text[17] = 0xC4;
  const ZoString s(text.c_str());
  const unsigned int found = s.index(L"x\u00E4X", 0, ZoString::ignoreCase);
  const unsigned int foundBack = s.indexBack(L"\u00E4", 0, ZoString::ignoreCase);
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(found, 16u);
  EXPECT_EQ(foundBack, 17u);
  EXPECT_FALSE(s.contains(L"\u00E4", ZoString::ignoreCase)) << "not in the C locale";
}

TEST(StringSearch, StartsPastTheEndAndEmptyPatternsNeverWrap) {
  const ZoString seven(L"abcdefg");
  EXPECT_EQ(seven.index(L"", 7), 7u);
  EXPECT_EQ(seven.indexBack(L"", 2), 7u);
  EXPECT_EQ(seven.index(nullptr, 2), 2u);
  for (const unsigned int start : {8u, 0x7FFFFFFFu, 0xFFFFFFFEu, ZoString::npos}) {
    EXPECT_EQ(seven.index(L"", start), ZoString::npos);
    EXPECT_EQ(seven.index(L"g", start), ZoString::npos);
    EXPECT_EQ(seven.indexBack(L"g", start), ZoString::npos);
    EXPECT_EQ(seven.splitNext(L"g", start), ZoString::npos);
  }
  EXPECT_EQ(seven.index(L"xxxx", 0xFFFFFFFF, 3, ZoString::exact), ZoString::npos);
  EXPECT_TRUE(ZoString().contains(L"") && !ZoString().contains(L"a"));
}

TEST(StringSearch, CharactersAndSetsAreFoundWhereverTheyStand) {
  using namespace zo::literals;
  std::mt19937 random(8);
  for (const std::wstring set : {L",", L",;", L",;.:", L",;.:!?", L""}) {
    for (int round = 0; round < 500; ++round) {
      const std::wstring text = randomText(random, L"abcdefghijk,;!", 40);
      const ZoString s(text.c_str());
      const auto from = static_cast<unsigned int>(random() % (text.size() + 2));
      const auto toPosition = [](size_t at) {
        return at == std::wstring::npos ? ZoString::npos : static_cast<unsigned int>(at);
      };
      ASSERT_EQ(s.splitNext(set.c_str(), from), toPosition(text.find_first_of(set, from)));
      ASSERT_EQ(s.first(set.c_str()), toPosition(text.find_first_of(set)));
      ASSERT_EQ(s.first(L','), toPosition(text.find(L',')));
      ASSERT_EQ(s.last(L','), toPosition(text.rfind(L',')));
    }
  }
  EXPECT_EQ((L"a\0b"_zs).first(L'\0'), 1u);
  EXPECT_EQ(ZoString(L"a,b").splitNext(nullptr), ZoString::npos);
}

TEST(StringCompare, PointerFormAndOperatorsOrderByCodeUnitTheStringFormByBytes) {
  EXPECT_EQ(ZoString(L"ab").compareTo(ZoString(L"abc")), -1);
  EXPECT_EQ(ZoString(L"abc").compareTo(nullptr), 1);
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
    EXPECT_EQ(ours <=> b.c_str(), order <=> 0);
    EXPECT_TRUE((ours == other) == (a == b) && (ours == b.c_str()) == (a == b));
    EXPECT_EQ(ours(0, 3) == b.c_str(), a.substr(0, 3) == b);
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
  int equal = 0;
  for (const std::wstring alphabet :
       {L"aAbB", L"aA-_ '19zZ", L"aA\u00E4\u00C4sS\u00DF\u00AD", L"\u0430\u0410"}) {
    for (int round = 0; round < 4000; ++round) {
      const std::wstring a = randomText(random, alphabet, round % 2 ? 3 : 20);
      std::wstring b = round % 4 == 0 ? a : randomText(random, alphabet, 3);
      for (wchar_t& c : b) c = random() % 2 == 0 ? static_cast<wchar_t>(std::towupper(c)) : c;
      const ZoString ours(a.c_str());
      const int order = platform(a, b);
      ASSERT_EQ(ours.compareTo(b.c_str(), ZoString::ignoreCase), order);
      ASSERT_EQ(ours.compareTo(ZoString(b.c_str()), ZoString::ignoreCase), order);
      ASSERT_EQ(ours.equals(b, ZoString::ignoreCase), order == 0);
      equal += order == 0;
    }
  }
  EXPECT_GT(equal, 2000) << "the pairs must try both answers";
  for (wchar_t a = 0x20; a < 0x7F; ++a) {
    for (wchar_t b = 0x20; b < 0x7F; ++b)
      ASSERT_EQ(zo::equalIgnoreCase({&a, 1}, {&b, 1}), platform({a}, {b}) == 0)
          << int{a} << " " << int{b};
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
