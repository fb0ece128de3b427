// Texts ignoring case, sorted by keys and in trees: exactly as the platform compares.
#include <windows.h>

#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

namespace {

struct Before {
  bool ascending;
  bool operator()(const ZoString& a, const ZoString& b) const {
    const auto less = [](const ZoString& x, const ZoString& y) {
      return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, x.data(),
                            static_cast<int>(x.length()), y.data(),
                            static_cast<int>(y.length())) == CSTR_LESS_THAN;
    };
    return ascending ? less(a, b) : less(b, a);
  }
};

// Short, so that many are equal but for their case, which shows whether the sort is stable.
std::vector<ZoString> texts(std::wstring_view alphabet, size_t n) {
  std::mt19937 random(3);
  std::vector<ZoString> made;
  while (made.size() < n) {
    const bool isLong = made.size() % 50 == 49;
    std::wstring text(random() % (isLong ? 40 : 4), L' ');
    for (wchar_t& c : text) {
      c = alphabet.empty() ? static_cast<wchar_t>(random()) : alphabet[random() % alphabet.size()];
    }
    if (made.size() % 500 == 499) text.append(5000, L'm');
    made.emplace_back(text);
  }
  return made;
}

template <class Sequence>
class TextSort : public testing::Test {};
using Sequences = testing::Types<ZoArray<ZoString>, ZoList<ZoString>>;
TYPED_TEST_SUITE(TextSort, Sequences);

TYPED_TEST(TextSort, IsStableAndThePlatformsOrder) {
  using namespace std::string_view_literals;
  for (const std::wstring_view alphabet :
       {L"abcABC xyz_09"sv, L"aA-b' B"sv, L"aA\u00E4\u00C4sS\u00DF\u00AD\u0308cChH"sv,
        L"\u0430\u0410\u0431 \u03B1a\0"sv, L"a\u0F71\u0F75\uFB21\uFE76\xD83D\xDE00"sv,
        L"-a\u2013e\u00E9\u4E00\u4E8C\uAC00\u1E9E"sv, L""sv}) {
    for (const size_t n : {0u, 1u, 15u, 16u, 700u, 2100u}) {
      for (const bool ascending : {true, false}) {
        std::vector<ZoString> expected = texts(alphabet, n);
        TypeParam sequence;
        for (const ZoString& text : expected) ASSERT_EQ(sequence.append(text), 0);
        std::stable_sort(expected.begin(), expected.end(), Before{ascending});
        ASSERT_EQ(sequence.sort(ZoCICompare<ZoString>(), ascending), 0);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), sequence.begin(), sequence.end()))
            << testing::PrintToString(ZoString(alphabet)) << ' ' << n << ' ' << ascending;
      }
    }
  }
}

TEST(TextTree, HasThePlatformsOrderBeforeAndAfterThatIsLearnt) {
  ZoTree<unsigned, ZoString> tree;
  std::map<ZoString, unsigned, Before> expected(Before{true});
  for (const ZoString& text : texts(L"aAbBc -'_19\u00E4\u00C4", 3000)) {
    const unsigned n = tree.entries();
    ASSERT_EQ(tree.insertAt(text, n) == 0, expected.emplace(text, n).second);
  }
  ASSERT_TRUE(std::ranges::equal(
      tree, expected, {}, [](const auto& entry) { return entry.key; },
      [](const auto& entry) { return entry.first; }));
  for (const ZoString& text : texts(L"aAbBc \u00E4'", 1000)) {
    const auto at = expected.find(text);
    const unsigned* const found = tree.at(text);
    ASSERT_EQ(found != nullptr, at != expected.end());
    ASSERT_TRUE(!found || *found == at->second);
    ASSERT_EQ(tree.removeAt(text) == 0, expected.erase(text) == 1);
  }
  EXPECT_EQ(tree.entries(), expected.size());
}

// An order derived from that of texts is asked itself.
class ByLength : public ZoCICompare<ZoString> {
 public:
  int compare(const ZoString& a, const ZoString& b) const override {
    return static_cast<int>(a.length()) - static_cast<int>(b.length());
  }
};

TYPED_TEST(TextSort, AsksADerivedOrder) {
  TypeParam sequence;
  for (const ZoString& text : texts(L"abc", 200)) ASSERT_EQ(sequence.append(text), 0);
  ASSERT_EQ(sequence.sort(ByLength()), 0);
  EXPECT_TRUE(
      std::is_sorted(sequence.begin(), sequence.end(),
                     [](const ZoString& a, const ZoString& b) { return a.length() < b.length(); }));
}

}  // namespace
