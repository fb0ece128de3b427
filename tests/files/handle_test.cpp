// What a caller can see of an object handle.
#include <gtest/gtest.h>
#include <zo/files/handle.h>

#include <limits>
#include <unordered_set>

#include "support/printers.h"

namespace {

constexpr std::int64_t kIds[] = {1,
                                 -1,
                                 std::int64_t{1} << 32,
                                 (std::int64_t{1} << 32) + 5,
                                 std::numeric_limits<std::int64_t>::max(),
                                 std::numeric_limits<std::int64_t>::min()};
const wchar_t* const kTexts[] = {L"1A2F", L"a text longer than the initial capacity",
                                 L"\xE4\x4E00"};

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
  expectParts(ZoHnd(), nullptr, 0);
  expectParts(ZoHnd(0), nullptr, 0);
  expectParts(ZoHnd(L""), nullptr, 0);
  expectParts(ZoHnd(nullptr), nullptr, 0);
  for (const wchar_t* text : kTexts) {
    expectParts(ZoHnd(text), text, 0);
    for (const std::int64_t id : kIds) {
      expectParts(ZoHnd(id), nullptr, id);
      ZoHnd textFirst(text);
      EXPECT_EQ(textFirst.setId(id), 0);
      expectParts(textFirst, text, id);
      ZoHnd idFirst;
      idFirst = id;
      idFirst = text;
      expectParts(idFirst, text, id);
      EXPECT_EQ(textFirst.setId(0), 0);
      expectParts(textFirst, text, 0);
      EXPECT_EQ(idFirst.setHandle(nullptr), 0);
      expectParts(idFirst, nullptr, id);
      idFirst = text;
      EXPECT_EQ(idFirst.setHandle(L""), 0);
      expectParts(idFirst, nullptr, id);
      idFirst = 0;
      expectParts(idFirst, nullptr, 0);
    }
  }
}

TEST(Handle, ResetRemovesWhatItNamesAndAnswersOnlyForTheId) {
  for (unsigned int which = 0; which < 8; ++which) {
    for (unsigned int present = 0; present < 4; ++present) {
      ZoHnd h((present & 1) ? L"text" : L"");
      h.setId((present & 2) ? kIds[3] : 0);
      const unsigned int left = present & ~which;
      EXPECT_EQ(h.reset(which), static_cast<int>(which & present & 2)) << which << ' ' << present;
      expectParts(h, (left & 1) ? L"text" : nullptr, (left & 2) ? kIds[3] : 0);
    }
  }
}

TEST(Handle, ACopySharesTheTextUntilOneOfThemChanges) {
  ZoHnd original(L"1A2F");
  original.setId(kIds[2]);
  ZoHnd copy(original);
  EXPECT_EQ(copy.handle(), original.handle()) << "one storage";
  ZoString out;
  ASSERT_EQ(original.getHandle(out), 0);
  EXPECT_EQ(out.data(), original.handle());
  copy = L"other";
  copy.setId(3);
  out[0] = L'#';
  expectParts(original, L"1A2F", kIds[2]);
  expectParts(copy, L"other", 3);
  copy = original;
  EXPECT_EQ(copy, original);
  copy.reset(3);
  expectParts(original, L"1A2F", kIds[2]);

  ZoHnd& self = original;
  original = self;
  original.setHandle(original.handle() + 1);
  expectParts(original, L"A2F", kIds[2]);
}

TEST(Handle, AMovedFromHandleIsEmpty) {
  ZoHnd from(L"1A2F");
  from.setId(-1);
  ZoHnd to(std::move(from));
  expectParts(from, nullptr, 0);
  expectParts(to, L"1A2F", -1);
  from = std::move(to);
  expectParts(from, L"1A2F", -1);
  expectParts(to, nullptr, 0);
  swap(from, to);
  expectParts(to, L"1A2F", -1);
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
