// What containers do when an element cannot be copied or memory runs out: nothing is lost, nothing
// leaks.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/failing_memory.h"
#include "tell_tale.h"

namespace {

using telltale::Mover;
using zo::test::FailingMemory;

template <class Element>
std::vector<int> valuesOf(const ZoSequence<Element>& sequence) {
  std::vector<int> values;
  for (const Element& element : sequence) values.push_back(element.value);
  return values;
}
// By key: a refused insertion may have grown a hash table.
template <class Element>
std::vector<std::pair<int, int>> valuesOf(const ZoDict<Element, Element>& dict) {
  std::vector<std::pair<int, int>> entries;
  for (const auto [key, value] : dict) entries.emplace_back(key.value, value.value);
  std::sort(entries.begin(), entries.end());
  return entries;
}

// Lets the n-th copy (or request for memory) of an operation fail, for every n until it succeeds.
template <class Container>
void expectNothingLost(const char* name, const Container& original,
                       const std::function<int(Container&)>& operation, bool mayRefuse = false) {
  enum Way { kThrow, kCopyWithoutMemory, kNoMemory, kNoMemoryOnce };
  const auto before = valuesOf(original);
  Container done(original);
  EXPECT_EQ(operation(done), 0) << name;
  const auto after = valuesOf(done);
  EXPECT_NE(after, before);
  for (const Way way : {kThrow, kCopyWithoutMemory, kNoMemory, kNoMemoryOnce}) {
    const bool isPoor = way >= kNoMemory;
    if (isPoor && !FailingMemory::isPossible()) continue;
    for (int n = 1; n < 100; ++n) {
      SCOPED_TRACE(std::string(name) + ", way " + std::to_string(way) + ", failure at " +
                   std::to_string(n));
      Container subject(original);
      const int live = telltale::live;
      telltale::failure =
          way == kThrow ? telltale::Failure::kException : telltale::Failure::kNoMemory;
      telltale::copiesUntilFailure = isPoor ? 0 : n;
      int status = 0;
      bool thrown = false;
      try {
        const FailingMemory poor(isPoor ? static_cast<unsigned>(n) : 0,
                                 way == kNoMemory ? FailingMemory::kForGood : FailingMemory::kOnce);
        status = operation(subject);
      } catch (const telltale::CopyFailed&) {
        thrown = true;
      } catch (const std::bad_alloc&) {
        status = 2;  // operations without a status
      }
      telltale::copiesUntilFailure = 0;
      if (!thrown && status == 0) {
        EXPECT_EQ(valuesOf(subject), after);
        break;  // n was past the last copy
      }
      EXPECT_EQ(thrown, way == kThrow);
      EXPECT_TRUE(thrown || status == 2 || (mayRefuse && status == 1)) << status;
      EXPECT_EQ(valuesOf(subject), before);
      EXPECT_EQ(telltale::live, live);
      ASSERT_LT(n, 99) << "it never succeeds";
    }
  }
  EXPECT_EQ(telltale::broken, 0);
}

template <class Sequence>
class SequenceFailures : public testing::Test {};
using Sequences =
    testing::Types<ZoArray<Mover>, ZoArray<telltale::Copier>, ZoArray<telltale::Thrower>,
                   ZoList<Mover>, ZoList<telltale::Copier>>;
TYPED_TEST_SUITE(SequenceFailures, Sequences);

TYPED_TEST(SequenceFailures, LoseNothing) {
  using Element = typename TypeParam::value_type;
  const Element added(99);
  TypeParam original, others;
  for (int i = 0; i < 8; ++i) ASSERT_EQ(original.append(Element(i)), 0);  // an array is full then
  for (int i = 0; i < 3; ++i) ASSERT_EQ(others.append(Element(50 + i)), 0);
  const auto check = [&](const char* name, const std::function<int(TypeParam&)>& operation) {
    expectNothingLost<TypeParam>(name, original, operation);
  };
  check("append", [&](TypeParam& s) { return s.append(added); });
  check("insert own element", [&](TypeParam& s) { return s.insertAt(2, *s.at(5)); });
  check("append sequence", [&](TypeParam& s) { return s.append(others); });
  check("fill at the end", [&](TypeParam& s) { return s.fillAt(8, 3, added); });
  check("set", [&](TypeParam& s) { return s.setAt(1, added); });
  check("sort", [&](TypeParam& s) { return s.sort(ZoCompare<Element>(), false); });
  check("assign", [&](TypeParam& s) { return s = others, 0; });
  check("copy", [&](TypeParam& s) { return s = TypeParam(others), 0; });
  check("remove all that match",
        [&](TypeParam& s) { return s.remove(Element(3), ZoCompare<Element>(), true); });
}

template <class Dict>
class DictFailures : public testing::Test {};
using Dicts = testing::Types<ZoHashDict<Mover, Mover>, ZoTree<Mover, Mover>,
                             ZoHashDict<telltale::Copier, telltale::Copier>,
                             ZoTree<telltale::Copier, telltale::Copier>>;
TYPED_TEST_SUITE(DictFailures, Dicts);

TYPED_TEST(DictFailures, LoseNothing) {
  using Element = typename TypeParam::key_type;
  TypeParam original, two;
  for (int i = 0; i < 90; ++i)
    ASSERT_EQ(original.insertAt(Element(i), Element(i)), 0);  // a hash table grows next
  ASSERT_EQ(two.insertAt(Element(1), Element(2)), 0);
  const Element key(1000), value(7);
  const auto check = [&](const char* name, const std::function<int(TypeParam&)>& operation) {
    expectNothingLost<TypeParam>(name, original, operation, true);
  };
  check("insert", [&](TypeParam& d) { return d.insertAt(key, value); });
  check("set", [&](TypeParam& d) { return d.setAt(Element(5), value); });
  check("assign", [&](TypeParam& d) { return d = two, 0; });
  check("copy", [&](TypeParam& d) { return d = TypeParam(two), 0; });
  check("remove into a variable", [&](TypeParam& d) {
    Element out(0);
    return d.removeAt(Element(31), out);  // a node in the middle of a tree
  });
}

TEST(Failures, ComparisonThatThrowsLeavesTheOrder) {
  struct Thrower final : ZoCompare<int> {
    mutable int left = 20;
    int compare(const int& a, const int& b) const override {
      if (--left == 0) throw telltale::CopyFailed();
      return a - b;
    }
  };
  ZoArray<int> array;
  for (int i = 0; i < 30; ++i) ASSERT_EQ(array.append(i * 7 % 30), 0);
  ZoList<int> list(array);
  const ZoArray<int> before(array);
  for (ZoSequence<int>* sequence : std::initializer_list<ZoSequence<int>*>{&array, &list}) {
    EXPECT_THROW(sequence->sort(Thrower()), telltale::CopyFailed);
    EXPECT_THROW(sequence->remove(3, Thrower(), true), telltale::CopyFailed);
    EXPECT_TRUE(sequence->isEqualTo(before));
  }
}

TEST(Failures, ARefusedElementIsNotLost) {
  using Owner = std::unique_ptr<int>;
  ZoArray<Owner> array;
  ZoList<Owner> list;
  ZoHashDict<Owner, int> dict;
  ZoTree<Owner, int> tree;
  ASSERT_EQ(dict.insertAt(5, std::make_unique<int>(5)), 0);
  ASSERT_EQ(tree.insertAt(5, std::make_unique<int>(5)), 0);
  Owner value = std::make_unique<int>(8);
  for (const int status : {array.append(value), list.append(value), dict.insertAt(6, value),
                           dict.insertAt(5, std::move(value)), tree.insertAt(5, std::move(value))})
    EXPECT_EQ(status, 1) << "a copy that there is not, or a key that is there";
  EXPECT_EQ(*value, 8);
}

TEST(Failures, AnEmptyDictionaryAsksForNoMemory) {
  if (!FailingMemory::isPossible()) GTEST_SKIP() << "needs the guarded heap";
  const ZoString key = L"a";
  ZoHashDict<int, ZoString> copy;
  {
    const FailingMemory none(1, FailingMemory::kForGood);
    ZoHashDict<int, ZoString> dict;
    copy = dict;
    EXPECT_EQ(dict.buckets(), 128u);
    EXPECT_FALSE(dict.contains(key) || dict.begin() != dict.end() || copy.stats().entries != 0);
    EXPECT_EQ(dict.removeAt(key), 1);
    EXPECT_EQ(dict.setCapacity(0, 0.7) * 10 + dict.setCapacity(16, 0.5), 10);
    EXPECT_FALSE(none.failed());
    EXPECT_EQ(dict.insertAt(key, 1), 2);
    copy = dict;
  }
  EXPECT_EQ(copy.insertAt(L"a", 1), 0);
  EXPECT_TRUE(copy.buckets() == 16 && copy.loadFactor() == 0.5);
  ZoHashDictIterator<int, ZoString> it(copy);
  EXPECT_EQ(copy.removeAll(true) + copy.insertAt(L"b", 2), 0);
  EXPECT_TRUE(copy.buckets() == 128 && !it.isValid());
}

struct Fixed {
  const int value;
  bool operator<(const Fixed& other) const { return value < other.value; }
};
struct FixedText {
  FixedText(int n) : value(n), text(std::to_wstring(n).c_str()) {}  // NOLINT: a value is one
  const int value;
  const ZoString text;
  bool operator<(const FixedText& other) const { return value < other.value; }
};

template <class Sequence>
void expectUnassignedToDo() {
  Sequence sequence;
  for (int i = 0; i < 9; ++i) ASSERT_EQ(sequence.append({i * 5 % 9}), 0);
  EXPECT_EQ(sequence.insertAt(3, {20}) + sequence.fillAt(10, 2, {30}) + sequence.sort(), 0);
  EXPECT_EQ(sequence.removeAt(1) + sequence.reverse() + sequence.append(sequence), 0);
  typename Sequence::value_type out{7};
  EXPECT_EQ(sequence.setAt(0, {1}) + sequence.removeAt(0, out) + sequence.fillAt(0, 1, {1}), 3);
  EXPECT_EQ(valuesOf(Sequence(sequence)),
            (std::vector{30, 30, 20, 8, 7, 6, 5, 4, 3, 2, 0, 30, 30, 20, 8, 7, 6, 5, 4, 3, 2, 0}));
}

TEST(Elements, ThatCannotBeAssignedAreFine) {
  expectUnassignedToDo<ZoArray<Fixed>>();
  expectUnassignedToDo<ZoArray<FixedText>>();
  expectUnassignedToDo<ZoList<Fixed>>();
  expectUnassignedToDo<ZoList<FixedText>>();
  ZoHashDict<FixedText, ZoString> dict;
  EXPECT_EQ(dict.insertAt(L"a", 1) + dict.put(L"b", 2), 0);
  EXPECT_EQ(dict.put(L"b", 3) * 10 + dict.removeAt(L"b"), 10);
}

TEST(Elements, ThatCanOnlyBeMovedMayStandInContainersOfContainers) {
  using Owner = std::unique_ptr<int>;
  ZoArray<ZoArray<Owner>> rows;
  ZoTree<ZoHashDict<Owner, ZoString>, ZoString> tree;
  for (int i = 0; i < 20; ++i) {
    ZoArray<Owner> row;
    ZoHashDict<Owner, ZoString> dict;
    EXPECT_EQ(row.append(std::make_unique<int>(i)), 0);
    EXPECT_EQ(dict.insertAt(L"a", std::make_unique<int>(i)), 0);
    EXPECT_EQ(rows.insertAt(0, std::move(row)), 0);
    EXPECT_EQ(tree.insertAt(ZoString(std::to_wstring(i).c_str()), std::move(dict)), 0);
  }
  EXPECT_EQ(*rows[0][0], 19);
  EXPECT_EQ(**tree.at(L"3")->at(L"A"), 3);
}

}  // namespace
