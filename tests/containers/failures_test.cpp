// What containers do when an element cannot be copied or memory runs out: nothing is lost, nothing
// leaks.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tell_tale.h"

namespace {

// Lets the n-th copy (or request for memory) of an operation fail, for every n until it succeeds.
template <class Container, class Read>
void expectNothingLost(const char* name, const Container& original, Read read,
                       const std::function<int(Container&)>& operation, bool mayRefuse = false) {
  enum Way { kThrow, kCopyWithoutMemory, kNoMemory };
  const auto before = read(original);
  for (const Way way : {kThrow, kCopyWithoutMemory, kNoMemory}) {
    for (int n = 1; n < 100; ++n) {
      SCOPED_TRACE(std::string(name) + ", way " + std::to_string(way) + ", failure at " +
                   std::to_string(n));
      Container subject(original);
      const int live = telltale::live;
      telltale::failure =
          way == kThrow ? telltale::Failure::kException : telltale::Failure::kNoMemory;
      (way == kNoMemory ? telltale::requestsUntilFailure : telltale::copiesUntilFailure) = n;
      int status = 0;
      bool thrown = false;
      try {
        status = operation(subject);
      } catch (const telltale::CopyFailed&) {
        thrown = true;
      }
      telltale::copiesUntilFailure = telltale::requestsUntilFailure = 0;
      if (!thrown && status == 0) {
        EXPECT_NE(read(subject), before);
        break;  // n was past the last copy
      }
      EXPECT_EQ(thrown, way == kThrow);
      EXPECT_TRUE(thrown || status == 2 || (mayRefuse && status == 1)) << status;
      EXPECT_EQ(read(subject), before);
      EXPECT_EQ(telltale::live, live);
      ASSERT_LT(n, 99) << "it never succeeds";
    }
  }
  EXPECT_EQ(telltale::broken, 0);
}

template <class Sequence>
class SequenceFailures : public testing::Test {};
using Sequences = testing::Types<ZoArray<telltale::Mover>, ZoArray<telltale::Copier>,
                                 ZoList<telltale::Mover>, ZoList<telltale::Copier>>;
TYPED_TEST_SUITE(SequenceFailures, Sequences);

TYPED_TEST(SequenceFailures, LoseNothing) {
  using Element = typename TypeParam::value_type;
  const auto read = [](const TypeParam& sequence) {
    std::vector<int> values;
    for (const Element& element : sequence) values.push_back(element.value);
    return values;
  };
  const int live = telltale::live;
  {
    TypeParam original;
    for (int i = 0; i < 8; ++i) ASSERT_EQ(original.append(Element(i)), 0);  // an array is full then
    const Element added(99);
    TypeParam others;
    for (int i = 0; i < 3; ++i) ASSERT_EQ(others.append(Element(50 + i)), 0);
    const auto check = [&](const char* name, const std::function<int(TypeParam&)>& operation) {
      expectNothingLost<TypeParam>(name, original, read, operation);
    };
    check("append", [&](TypeParam& s) { return s.append(added); });
    check("prepend", [&](TypeParam& s) { return s.prepend(added); });
    check("insert own element", [&](TypeParam& s) { return s.insertAt(2, *s.at(5)); });
    check("append sequence", [&](TypeParam& s) { return s.append(others); });
    check("append itself", [&](TypeParam& s) { return s.append(s); });
    check("fill at the end", [&](TypeParam& s) { return s.fillAt(8, 3, added); });
    check("set", [&](TypeParam& s) { return s.setAt(1, added); });
    check("copy", [&](TypeParam& s) { return s.copyFrom(others); });
    check("sort", [&](TypeParam& s) { return s.sort(ZoCompare<Element>(), false); });
    check("remove all that match",
          [&](TypeParam& s) { return s.remove(Element(3), ZoCompare<Element>(), true); });
    check("assign", [&](TypeParam& s) {
      try {
        s = others;
        return 0;
      } catch (const std::bad_alloc&) {
        return 2;
      }
    });
  }
  EXPECT_EQ(telltale::live, live);
}

template <class Dict>
class DictFailures : public testing::Test {};
using Dicts = testing::Types<ZoHashDict<telltale::Mover, telltale::Mover>,
                             ZoTree<telltale::Mover, telltale::Mover>>;
TYPED_TEST_SUITE(DictFailures, Dicts);

TYPED_TEST(DictFailures, LoseNothing) {
  using telltale::Mover;
  const auto read = [](const TypeParam& dict) {
    std::vector<std::pair<int, int>> entries;
    for (const auto [key, value] : dict) entries.emplace_back(key.value, value.value);
    std::sort(entries.begin(), entries.end());  // a refused insertion may have grown the table
    return entries;
  };
  const int live = telltale::live;
  {
    TypeParam original;
    for (int i = 0; i < 90; ++i)
      ASSERT_EQ(original.insertAt(Mover(i), Mover(i)), 0);  // a hash table grows next
    const Mover key(1000);
    const Mover value(7);
    const auto check = [&](const char* name, const std::function<int(TypeParam&)>& operation) {
      expectNothingLost<TypeParam>(name, original, read, operation, true);
    };
    check("insert", [&](TypeParam& d) { return d.insertAt(key, value); });
    check("set", [&](TypeParam& d) { return d.setAt(Mover(5), value); });
    check("assign", [&](TypeParam& d) {
      try {
        TypeParam two;
        two.insertAt(Mover(1), Mover(2));
        d = static_cast<const TypeParam&>(two);
        return 0;
      } catch (const std::bad_alloc&) {
        return 2;
      }
    });
  }
  EXPECT_EQ(telltale::live, live);
  EXPECT_EQ(telltale::broken, 0);
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
  ZoList<int> list;
  for (int i = 0; i < 30; ++i) {
    array.append(i * 7 % 30);
    list.append(i * 7 % 30);
  }
  EXPECT_THROW(array.sort(Thrower()), telltale::CopyFailed);
  EXPECT_THROW(list.sort(Thrower()), telltale::CopyFailed);
  EXPECT_THROW(list.remove(3, Thrower(), true), telltale::CopyFailed);
  EXPECT_THROW(array.remove(3, Thrower(), true), telltale::CopyFailed);
  EXPECT_TRUE(list.engine().validate());
  for (unsigned i = 0; i < 30; ++i) EXPECT_EQ(array[i], static_cast<int>(i * 7 % 30));
  EXPECT_TRUE(list.isEqualTo(array));
}

TEST(Failures, ElementsThatOnlyMove) {
  using Owner = std::unique_ptr<int>;
  ZoArray<Owner> array;
  ZoList<Owner> list;
  ZoHashDict<Owner, int> dict;
  ZoTree<Owner, int> tree;
  for (int i = 0; i < 100; ++i) {
    ASSERT_EQ(array.insertAt(array.entries() / 2, std::make_unique<int>(i)), 0);
    ASSERT_EQ(list.append(std::make_unique<int>(i)), 0);
    ASSERT_EQ(dict.insertAt(int{i}, std::make_unique<int>(i)), 0);
    ASSERT_EQ(tree.insertAt(int{i}, std::make_unique<int>(i)), 0);
  }
  struct ByValue final : ZoCompare<Owner> {
    int compare(const Owner& a, const Owner& b) const override { return *a - *b; }
  };
  EXPECT_EQ(array.sort(ByValue()), 0);
  EXPECT_EQ(list.sort(ByValue(), false), 0);
  Owner out;
  EXPECT_EQ(array.removeAt(40, out), 0);
  EXPECT_EQ(*out, 40);
  EXPECT_EQ(list.removeFirst(out), 0);
  EXPECT_EQ(*out, 99);
  EXPECT_EQ(dict.removeAt(7, out), 0);
  EXPECT_EQ(*out, 7);
  EXPECT_EQ(tree.removeAt(8, out), 0);
  EXPECT_EQ(*out, 8);
  // What would need a copy is refused.
  EXPECT_EQ(array.append(out), 1);
  EXPECT_EQ(list.append(out), 1);
  EXPECT_EQ(dict.insertAt(1000, out), 1);
  EXPECT_EQ(array.append(array), 1);
  // A value is not lost when its key is present.
  EXPECT_EQ(dict.insertAt(5, std::move(out)), 1);
  EXPECT_EQ(tree.insertAt(5, std::move(out)), 1);
  EXPECT_EQ(*out, 8);
}

}  // namespace
