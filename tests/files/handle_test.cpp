// What a caller can see of an object handle.
#include <gtest/gtest.h>
#include <zo/files/handle.h>

#include <limits>
#include <unordered_set>

#include "support/printers.h"

namespace {

constexpr std::int64_t kLarge = (std::int64_t{1} << 32) + 5;
constexpr std::int64_t kIds[] = {1, -1, std::int64_t{1} << 32, kLarge,
                                 std::numeric_limits<std::int64_t>::min()};
const wchar_t* const kTexts[] = {L"1A2F", L"a text longer than the initial capacity"};

// Everything visible; null text and id 0 stand for absent.
void expectParts(const ZoHnd& h, const wchar_t* text, std::int64_t id) {
  const bool hasText = text && *text;
  EXPECT_EQ(h.types(), (hasText ? 1u : 0u) | (id ? 2u : 0u));
  EXPECT_EQ(h.isKindOf(ZoHnd::kText), hasText);
  EXPECT_EQ(h.isKindOf(ZoHnd::kId), id != 0);
  EXPECT_STREQ(h.handle(), hasText ? text : L"");
  EXPECT_EQ(h.id(), id);
  ZoString textOut(L"untouched");
  EXPECT_EQ(h.getHandle(textOut), hasText ? 0 : 1);
  EXPECT_EQ(textOut, hasText ? text : L"untouched");
  std::int64_t idOut = 77;
  EXPECT_EQ(h.getId(idOut), id ? 0 : 1);
  EXPECT_EQ(idOut, id ? id : 77);
}

TEST(Handle, PartsAreIndependentInEveryCombination) {
  for (const ZoHnd& none : {ZoHnd(), ZoHnd(0), ZoHnd(L""), ZoHnd(nullptr)})
    expectParts(none, nullptr, 0);
  for (const wchar_t* text : kTexts) {
    expectParts(ZoHnd(text), text, 0);
    for (const std::int64_t id : kIds) {
      expectParts(ZoHnd(id), nullptr, id);
      ZoHnd textFirst(text), idFirst;
      EXPECT_EQ(textFirst.setId(id), 0);
      expectParts(textFirst, text, id);
      idFirst = id;
      idFirst = text;
      expectParts(idFirst, text, id);
      textFirst = 0;
      expectParts(textFirst, text, 0);
      EXPECT_EQ(idFirst.setHandle(nullptr), 0);
      expectParts(idFirst, nullptr, id);
    }
  }
}

TEST(Handle, ResetRemovesWhatItNamesAndAnswersOnlyForTheId) {
  for (unsigned int which = 0; which < 8; ++which) {
    for (unsigned int present = 0; present < 4; ++present) {
      ZoHnd h((present & 1) ? L"text" : L"");
      h.setId((present & 2) ? kLarge : 0);
      const unsigned int left = present & ~which;
      EXPECT_EQ(h.reset(which), static_cast<int>(which & present & 2)) << which << ' ' << present;
      expectParts(h, (left & 1) ? L"text" : nullptr, (left & 2) ? kLarge : 0);
    }
  }
}

TEST(Handle, CopiesShareTheTextUntilOneChangesAndMovesTakeIt) {
  ZoHnd original(L"1A2F");
  original.setId(kLarge);
  ZoHnd copy(original);
  EXPECT_EQ(copy.handle(), original.handle()) << "one storage";
  ZoString out;
  ASSERT_EQ(original.getHandle(out), 0);
  EXPECT_EQ(out.data(), original.handle());
  copy = L"other";
  copy.setId(3);
  out[0] = L'#';
  expectParts(original, L"1A2F", kLarge);
  expectParts(copy, L"other", 3);
  ZoHnd& self = original;
  original = self;
  original.setHandle(original.handle() + 1);
  ZoHnd moved(std::move(original));
  expectParts(original, nullptr, 0);
  original = std::move(moved);
  expectParts(original, L"A2F", kLarge);
  expectParts(moved, nullptr, 0);
  swap(original, moved);
  expectParts(moved, L"A2F", kLarge);
}

TEST(Handle, EqualityAndHashLookAtBothParts) {
  std::unordered_set<ZoHnd> set;
  for (const wchar_t* text : {L"", L"1A2F", L"1a2f"}) {
    for (const std::int64_t id : {std::int64_t{0}, std::int64_t{5}, (std::int64_t{1} << 32) + 5}) {
      ZoHnd h(text);
      h.setId(id);
      EXPECT_TRUE(set.insert(h).second);
      EXPECT_FALSE(set.insert(ZoHnd(h)).second);
    }
  }
  EXPECT_EQ(set.size(), 9u);
}

}  // namespace
