// What editing does to the text, to its storage and to the strings that share it.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/text/string.h>

#include <random>
#include <string>
#include <vector>

#include "support/printers.h"

namespace {

const ZoStringRef* block(const ZoString& s) {
  return reinterpret_cast<const ZoStringRef*>(s.data()) - 1;
}

// Everything a caller can see of a text.
void expectText(const ZoString& s, const std::wstring& text) {
  ASSERT_EQ(s.length(), text.size());
  EXPECT_EQ(std::wstring(s.view()), text);
  EXPECT_EQ(s.data()[text.size()], 0) << "terminator";
  EXPECT_LE(s.length(), s.capacity());
}

// The capacity rule, written from its description.
unsigned int steppedCapacity(unsigned int n) {
  unsigned int capacity = 15;
  while (capacity < n) capacity += 16;
  return capacity;
}

TEST(StringStorage, EmptyStringsShareOneBlockThatIsNeverUnshared) {
  const ZoString made;
  EXPECT_EQ(ZoString(static_cast<const wchar_t*>(nullptr)).data(), made.data());
  EXPECT_EQ(ZoString(L"abc", 0).data(), made.data());
  ZoString().toUpper().strip().resize(0)[0] = L'x';
  expectText(ZoString(), L"");
}

// Threads that use empty strings at the same time can lose counts of the one block they share.
TEST(StringStorage, TheEmptyBlockOutlivesALostCount) {
  ZoStringRef* const empty = ZoStringRef::emptyRep();
  const unsigned int references = empty->references();
  for (unsigned int i = 0; i < references; ++i) empty->release();
  {
    const ZoString one;
    ZoString other(one);
    other.append(L'x');
  }
  for (unsigned int i = 0; i < references; ++i) empty->addReference();
  expectText(ZoString(), L"");
}

TEST(StringStorage, CapacityFollowsInitialCapacityIncrementAndWaste) {
  for (unsigned int length = 1; length < 70; ++length) {
    const ZoString made(std::wstring(length, L'x').c_str());
    ZoString grown;
    for (unsigned int i = 0; i < length; ++i) grown.append(L'x');
    EXPECT_EQ(made.capacity(), steppedCapacity(length));
    EXPECT_EQ(grown.capacity(), steppedCapacity(length));
    EXPECT_EQ((made + made).capacity(), steppedCapacity(2 * length));
  }
}

TEST(StringSharing, AnEditThroughAnyDoorLeavesTheCopyAlone) {
  using Edit = void (*)(ZoString&);
  const Edit edits[] = {
      [](ZoString& s) { s[0] = L'#'; },
      [](ZoString& s) { s.append(L"x"); },
      [](ZoString& s) { s.remove(2); },
      [](ZoString& s) { s.strip(ZoString::both, L"ab"); },
      [](ZoString& s) { s = L""; },
      [](ZoString& s) { s(0, 2)[1] = L'-'; },
      [](ZoString& s) { s.setFromMB("other"); },
      [](ZoString& s) { ZoString(std::move(s)); },
  };
  for (const Edit edit : edits) {
    ZoString original(L"abcd");
    ZoString copy(original);
    EXPECT_EQ(copy.data(), original.data());
    edit(copy);
    expectText(original, L"abcd");
    EXPECT_NE(copy.data(), original.data());
    EXPECT_EQ(block(original)->references(), 1u) << "the edited copy let go";
  }
}

// Random edits of strings that share storage and feed each other, their own pieces included.
TEST(StringEdit, RandomEditsAgreeWithAPlainStringAndTheCapacityRule) {
  std::mt19937 random(20240611);
  const auto below = [&](unsigned int n) { return static_cast<unsigned int>(random() % n); };
  constexpr size_t kStrings = 6;
  std::vector<ZoString> ours(kStrings);
  std::vector<std::wstring> plain(kStrings);
#ifdef ZO_GUARDED
  constexpr int kRounds = 3000;
#else
  constexpr int kRounds = 30000;
#endif
  for (int round = 0; round < kRounds; ++round) {
    const size_t target = below(kStrings);
    const size_t source = below(kStrings);
    ZoString& s = ours[target];
    std::wstring& p = plain[target];
    const unsigned int pos = below(s.length() + 4);
    const unsigned int n = below(4) == 0 ? ZoString::npos : below(12);
    const unsigned int take = below(ours[source].length() + 1);
    const auto at = std::min<size_t>(pos, p.size());
    const unsigned int sharers = block(s)->references();
    const unsigned int capacity = s.capacity();
    const wchar_t* const data = s.data();
    const size_t total = p.size() - std::min<size_t>(n, p.size() - at) + take;
    const bool aliased = ours[source].data() == data && take > 0 && !p.empty();
    switch (below(p.size() > 90 ? 3 : 8)) {
      case 0:
        s = ours[source];
        p = plain[source];
        break;
      case 1:
        s.remove(pos, n);
        p.erase(at, n);
        break;
      case 2:
        s = s.mid(pos, n);
        p = pos > p.size() ? L"" : p.substr(at, n);
        break;
      case 3:
        s.append(L'x', below(5));
        p.append(s.length() - p.size(), L'x');
        break;
      case 4:
        s.prepend(ours[source], take);
        p.insert(0, plain[source].substr(0, take));
        break;
      case 5:
        if (pos <= s.length()) s.mid(pos, n) = ours[source].left(take);
        if (pos <= p.size()) p.replace(at, n, plain[source].substr(0, take));
        break;
      default: {
        s.replace(pos, n, ours[source].data(), take);
        p.replace(at, n, std::wstring(plain[source], 0, take));
        const bool inPlace =
            !aliased && sharers == 1 && capacity >= total && capacity - total <= 15;
        EXPECT_EQ(s.capacity(),
                  inPlace ? capacity : steppedCapacity(static_cast<unsigned int>(total)));
      }
    }
    for (size_t i = 0; i < kStrings; ++i) ASSERT_NO_FATAL_FAILURE(expectText(ours[i], plain[i]));
  }
}

TEST(StringEdit, StripTakesTheNamedEnds) {
  struct Case {
    const wchar_t* text;
    ZoString::stripType type;
    const wchar_t* set;
    const wchar_t* result;
    unsigned int start;
  };
  for (const Case& c : std::vector<Case>{{L" ab ", ZoString::both, L" ", L"ab", 1},
                                         {L" ab ", ZoString::leading, L" ", L"ab ", 1},
                                         {L"   ", ZoString::trailing, L" ", L"", ZoString::npos},
                                         {L"xyabyx", ZoString::both, L"yx", L"ab", 2},
                                         {L" ab ", ZoString::both, nullptr, L" ab ", 0}}) {
    ZoString text(c.text);
    EXPECT_EQ(text.stripped(c.type, c.set), c.result);
    EXPECT_EQ(text.stripped(c.type, c.set).start(), c.start);
    expectText(text.strip(c.type, c.set), c.result);
  }
}

TEST(StringEdit, ReplaceAllTakesEveryOccurrenceFromTheFront) {
  struct Case {
    const wchar_t *text, *what, *by;
    ZoString::caseCompare cmp;
    const wchar_t* result;
  };
  for (const Case& c : std::vector<Case>{{L"aaaaa", L"aa", L"b", ZoString::exact, L"bba"},
                                         {L"abcabc", L"abc", L"", ZoString::exact, L""},
                                         {L"one", L"", L"x", ZoString::exact, L"one"},
                                         {L"one", L"two", L"x", ZoString::exact, L"one"},
                                         {L"aXbx", L"x", L"xx", ZoString::ignoreCase, L"axxbxx"},
                                         {L"a,b", L",", nullptr, ZoString::exact, L"ab"}}) {
    ZoString text(c.text);
    const ZoString other(text);
    expectText(text.replaceAll(c.what, c.by, c.cmp), c.result);
    expectText(other, c.text);
    EXPECT_EQ(text.data() == other.data(), other == c.result) << "shared while nothing is done";
  }
  ZoString own(L"abab");
  expectText(own.replaceAll(own.left(1), own), L"ababbababb");
}

TEST(StringEdit, JoinUndoesSplitInOneBlock) {
  for (const wchar_t* text : {L"", L"a", L"a,,b,", L",", L"one,two,three,four,five"}) {
    ZoArray<ZoString> array;
    ZoList<ZoString> list;
    ZoString(text).split(L',', array);
    ZoString(text).split(std::wstring_view(L","), list);
    const ZoString joined = ZoString::join(array, L',');
    expectText(joined, text);
    EXPECT_EQ(joined.capacity(), ZoString(text).capacity());
    expectText(ZoString::join(list, L","), text);
  }
  expectText(ZoString::join({L"a", L"bc"}, ZoString(L" - ")), L"a - bc");
  expectText(ZoString::join(std::vector<std::wstring>{L"", L""}, L""), L"");
}

TEST(StringEdit, WhatWouldPassTheLimitIsRefusedAndNothingChanges) {
  const wchar_t* const never = L"";  // not read: the length alone is refused
  ZoString s(L"abc");
  s.append(never, ZoString::maxLength() - 2);
  s.append(L'x', 0xFFFFFFFF).insert(1, never, 0xFFFFFFF0).resize(0xFFFFFFFF);
  s.replace(1, 2, never, 0xFFFFFFFF);
  s(1, 1) = s;
  expectText(s, L"aabcc");
  expectText(ZoString(never, 0xFFFFFFFF), L"");
}

TEST(StringAccess, IndexesOutOfRangeReachNoString) {
  ZoString s(L"abc");
  const ZoString& constant = s;
  for (const long long bad : {3LL, 4LL, 0xFFFFFFFFLL, 0x100000000LL, -1LL}) {
    EXPECT_EQ(constant[bad], 0) << bad;
    s[bad] = L'q';
    EXPECT_EQ(s(bad), L'q') << "the scratch character keeps what was written last";
  }
  s(1, 1)[1] = L'!';
  expectText(s, L"abc");
}

TEST(SubString, CoversWhatWasAssignedAndTheNullSubstringTakesNothing) {
  ZoString s(L"one two three");
  ZoSubString word = s(4, 3);
  word = L"twenty-two";
  word = word;
  word = static_cast<const wchar_t*>(nullptr);
  expectText(s, L"one  three");
  EXPECT_FALSE(!word) << "an empty place is not the null substring";
  word = s(4, 99);
  expectText(s, L"one  three three");

  ZoSubString none = s.subString(L"missing");
  EXPECT_TRUE(!none);
  none = L"x";
  expectText(s, L"one  three three");
  const ZoSubString stale = s(10, 6);
  s.remove(12);
  EXPECT_EQ(stale, L" t") << "cut at the end of what is left";
}

}  // namespace
