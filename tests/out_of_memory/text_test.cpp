// Strings and containers when memory runs out: nothing changes, nothing leaks, and the next try
// succeeds.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/parse.h>
#include <zo/strings.h>

#include <sstream>

#include "support/failing_memory.h"

namespace {

using zo::test::failEveryRequest;

constexpr wchar_t kText[] = L"a text that is longer than what fits into the first block";

TEST(OutOfMemory, EditsLeaveTheString) {
  using Edit = ZoString& (*)(ZoString&);
  const struct {
    const char* name;
    Edit edit;
    ZoString result;
  } edits[] = {
      {"assign", [](ZoString& s) -> ZoString& { return s = kText; }, kText},
      {"append", [](ZoString& s) -> ZoString& { return s += kText; }, ZoString(L"a,b,c") + kText},
      {"append itself", [](ZoString& s) -> ZoString& { return s.append(s); }, L"a,b,ca,b,c"},
      {"insert", [](ZoString& s) -> ZoString& { return s.insert(1, L"xyz"); }, L"axyz,b,c"},
      {"one character", [](ZoString& s) -> ZoString& { return s[0] = L'x', s; }, L"x,b,c"},
      {"upper case", [](ZoString& s) -> ZoString& { return s.toUpper(); }, L"A,B,C"},
      {"strip", [](ZoString& s) -> ZoString& { return s.strip(ZoString::both, L"ac"); }, L",b,"},
      {"remove", [](ZoString& s) -> ZoString& { return s.remove(1); }, L"a"},
      {"from bytes", [](ZoString& s) -> ZoString& { return s.setFromMB("bytes"); }, L"bytes"},
  };
  const ZoString original = L"a,b,c";
  for (const auto& [name, edit, result] : edits) {
    failEveryRequest(
        name, [&] { return original; }, [&](ZoString& s) { return edit(s), 0; },
        [&](const ZoString& s, bool done) {
          EXPECT_EQ(s, done ? result : original);
          EXPECT_EQ(original, L"a,b,c") << "it shared its text";
        });
  }
}

TEST(OutOfMemory, TextsFromStreamsAndBytesCompleteOrNot) {
  failEveryRequest(
      "line of a stream",
      [] { return std::make_pair(std::wistringstream(kText), ZoString(L"old")); },
      [](auto& state) { return state.first.seekg(0), state.second.readFile(state.first), 0; },
      [](const auto& state, bool done) {
        if (done) {
          EXPECT_EQ(state.second, kText);
        }
      });
  failEveryRequest(
      "split", [] { return ZoArray<ZoString>(); },
      [](ZoArray<ZoString>& out) { return ZoString(L"a,b,c,d").split(L",", out) == 4 ? 0 : 2; },
      [](const ZoArray<ZoString>& out, bool done) {
        if (done) {
          EXPECT_EQ(out.entries(), 4u);
        }
      });
}

template <class Container>
Container filled(int count) {
  Container container;
  for (int i = 0; i < count; ++i) {
    const ZoString text = ZoString(L"text ").append(L'x', static_cast<unsigned>(i));
    if constexpr (requires { container.append(text); }) {
      EXPECT_EQ(container.append(text), 0);
    } else {
      EXPECT_EQ(container.insertAt(text, text), 0);
    }
  }
  return container;
}

template <class Container>
class OutOfMemoryIn : public testing::Test {};
using Containers = testing::Types<ZoArray<ZoString>, ZoList<ZoString>,
                                  ZoHashDict<ZoString, ZoString>, ZoTree<ZoString, ZoString>>;
TYPED_TEST_SUITE(OutOfMemoryIn, Containers);

TYPED_TEST(OutOfMemoryIn, GrowingCopyingAndAssigningLoseNothing) {
  const unsigned entries = 89;  // a dictionary's table grows at the next
  const TypeParam original = filled<TypeParam>(entries);
  const TypeParam other = filled<TypeParam>(5);
  const auto grow = [&](TypeParam& c) {
    const ZoString text = kText;
    if constexpr (requires { c.append(text); }) {
      return c.append(text);
    } else {
      return c.put(text, text);
    }
  };
  failEveryRequest(
      "grow", [&] { return original; }, grow,
      [&](const TypeParam& c, bool done) { EXPECT_EQ(c.entries(), entries + done); });
  failEveryRequest(
      "assign", [&] { return original; }, [&](TypeParam& c) { return c = other, 0; },
      [&](const TypeParam& c, bool done) { EXPECT_EQ(c.entries(), done ? 5u : entries); });
  failEveryRequest(
      "copy", [] { return TypeParam(); }, [&](TypeParam& c) { return c = TypeParam(original), 0; },
      [&](const TypeParam& c, bool done) { EXPECT_EQ(c.entries(), done ? entries : 0u); });
  if constexpr (requires(TypeParam& c) { c.sort(ZoCompare<ZoString>(), false); })
    failEveryRequest(
        "sort", [&] { return original; },
        [](TypeParam& c) { return c.sort(ZoCompare<ZoString>(), false); },
        [&](const TypeParam& c, bool) { EXPECT_EQ(c.entries(), entries); });
}

TEST(OutOfMemory, ExpressionsAreAsTheyWereAndSearchesSayNo) {
  const ZoString text = L"one, two";
  for (const auto how : {ZoRegExp::kDefault, ZoRegExp::kNoMachineCode}) {
    failEveryRequest(
        "compile", [] { return ZoRegExp(L"x"); },
        [&](ZoRegExp& e) { return e.set(L"(?<n>[a-z]+)|\\w", how | ZoRegExp::kExtended); },
        [&](const ZoRegExp& e, bool done) { EXPECT_EQ(text.index(e), done ? 0 : ZoString::npos); });
    const ZoRegExp word(L"([a-z])+", how), whole(L"(?:[a-z ]|,)+z?", how);
    failEveryRequest(
        "search", [] { return ZoString(); },
        [&](ZoString& found) {
          found = L"";
          ZoSearch search(word, text);
          while (search.next()) found += search.match(1);
          if (search.status()) return search.status();
          return text.index(word) == 0 ? 0 : ZoResult::outOfMemory;
        },
        [](const ZoString& found, bool done) {
          if (done) {
            EXPECT_EQ(found, L"eo");
          }
        });
    failEveryRequest(
        "match whole", [] { return 0; },
        [&](int&) { return text.matches(whole) ? 0 : ZoResult::outOfMemory; }, [](int, bool) {});
    failEveryRequest(
        "replace", [&] { return text; },
        [&](ZoString& s) { return ZoSearch::replaceAll(s, word, L"<$1$0>"); },
        [&](const ZoString& s, bool done) {
          EXPECT_EQ(s, done ? L"<eone>, <otwo>" : text.data());
        });
    failEveryRequest(
        "split at matches", [] { return ZoArray<ZoString>(); },
        [&](ZoArray<ZoString>& out) { return ZoSearch::split(text, word, out); },
        [](const ZoArray<ZoString>& out, bool done) { EXPECT_EQ(out.entries(), done ? 3u : 0u); });
  }
}

}  // namespace
