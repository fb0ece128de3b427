// Strings when memory runs out: nothing changes, nothing leaks, and the next try succeeds.
// (Containers: containers/failures_test.cpp.)
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
void sortByKeys() {
  Container many;  // so many that they are sorted by keys
  for (int i = 0; i < 2200; ++i)
    ASSERT_EQ(many.append(ZoString(L"text ").append(L'x', static_cast<unsigned>(i % 89))), 0);
  failEveryRequest(
      "sort by keys", [&] { return many; },
      [](Container& c) { return c.sort(ZoCICompare<ZoString>(), false); },
      [&](const Container& c, bool done) {
        EXPECT_EQ(c.entries(), many.entries());
        EXPECT_EQ(c.first()->length(), done ? 5u + 88 : 5u);
      });
}

TEST(OutOfMemory, TextsAreSortedOrStayAsTheyWere) {
  sortByKeys<ZoArray<ZoString>>();
  sortByKeys<ZoList<ZoString>>();
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
