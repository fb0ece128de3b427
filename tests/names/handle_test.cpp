// What a caller can see of an object handle.
#include <gtest/gtest.h>
#include <zo/names/handle.h>

#include "support/printers.h"

namespace {

constexpr std::int64_t kLarge = (std::int64_t{1} << 32) + 5;

// Everything visible; empty text and id 0 stand for absent.
void expectParts(const ZoHnd& h, const wchar_t* text, std::int64_t id) {
  EXPECT_EQ(h.types(), (*text ? 1u : 0u) | (id ? 2u : 0u));
  EXPECT_STREQ(h.handle(), text);
  EXPECT_EQ(h.id(), id);
  ZoString textOut(L"untouched");
  EXPECT_EQ(h.getHandle(textOut), *text ? 0 : 1);
  EXPECT_EQ(textOut, *text ? text : L"untouched");
  std::int64_t idOut = 77;
  EXPECT_EQ(h.getId(idOut), id ? 0 : 1);
  EXPECT_EQ(idOut, id ? id : 77);
}

TEST(Handle, ResetRemovesWhatItNamesAndAnswersOnlyForTheId) {
  for (unsigned int which = 0; which < 8; ++which) {
    for (unsigned int present = 0; present < 4; ++present) {
      ZoHnd h((present & 1) ? L"text" : L"");
      h.setId((present & 2) ? kLarge : 0);
      const unsigned int left = present & ~which;
      EXPECT_EQ(h.reset(which), static_cast<int>(which & present & 2)) << which << ' ' << present;
      expectParts(h, (left & 1) ? L"text" : L"", (left & 2) ? kLarge : 0);
    }
  }
}

TEST(Handle, CopiesShareTheTextUntilOneChangesAndMovesTakeIt) {
  ZoHnd original(L"1A2F");
  original.setId(kLarge);
  ZoHnd copy(original);
  EXPECT_EQ(copy.handle(), original.handle()) << "one storage";
  copy = L"other";
  copy.setId(-1);
  expectParts(original, L"1A2F", kLarge);
  expectParts(copy, L"other", -1);
  original.setHandle(original.handle() + 1);  // a text of its own
  const ZoHnd moved(std::move(original));
  expectParts(original, L"", 0);
  expectParts(moved, L"A2F", kLarge);
}

}  // namespace
