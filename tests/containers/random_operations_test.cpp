// One suite of random operations for every container, against a standard one that does the same.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include "tell_tale.h"

namespace {

#ifdef ZO_GUARDED
constexpr int kSteps = 600;  // a block costs much there
#else
constexpr int kSteps = 20000;
#endif

using telltale::Mover;
using Random = std::mt19937;

unsigned upTo(Random& random, std::size_t n) { return static_cast<unsigned>(random() % (n + 1)); }

template <class Container>
bool isSound(const Container& c) {
  return c.engine().validate();
}
template <class T, class K, class H>
bool isSound(const ZoHashDict<T, K, H>& dict) {
  const ZoHashKey<K> key(dict.policy());
  return dict.engine().validate(&key);
}
template <class T, class K, class C>
bool isSound(const ZoTree<T, K, C>& tree) {
  const C compare;
  const ZoTreeCompare<K> adapter(compare);
  return tree.engine().validate(&adapter);
}

class TenthsCompare final : public ZoCompare<Mover> {
 public:
  int compare(const Mover& a, const Mover& b) const override { return a.value / 10 - b.value / 10; }
};

// A sequence and the std::vector that it must agree with.
template <class Sequence>
struct SequencePair {
  Sequence ours;
  std::vector<int> model;

  void step(Random& random) {
    const int value = static_cast<int>(random() % 50);
    const unsigned n = static_cast<unsigned>(model.size());
    const unsigned i = upTo(random, n + 1);  // now and then past the end
    const auto at = [&](unsigned k) { return model.begin() + k; };
    int expected = i < n ? 0 : 1;
    switch (random() % (n > 200 ? 20 : 14)) {
      case 0:
        EXPECT_EQ(ours.append(value), 0);
        model.push_back(value);
        break;
      case 1:
        EXPECT_EQ(ours.prepend(value), 0);
        model.insert(model.begin(), value);
        break;
      case 2:
      case 3:
        EXPECT_EQ(ours.insertAt(i, value), i <= n ? 0 : 1);
        if (i <= n) model.insert(at(i), value);
        break;
      case 4: {
        Mover out(-7);
        EXPECT_EQ(ours.removeAt(i, out), expected);
        EXPECT_EQ(out.value, i < n ? model[i] : -7);
        if (i < n) model.erase(at(i));
        break;
      }
      case 5:
        EXPECT_EQ(ours.setAt(i, value), expected);
        if (i < n) model[i] = value;
        break;
      case 6: {
        const unsigned count = upTo(random, 3);
        EXPECT_EQ(ours.fillAt(i, count, value), i <= n ? 0 : 1);
        if (i > n) break;
        model.resize(std::max<std::size_t>(n, i + count));
        std::fill_n(at(i), count, value);
        break;
      }
      case 7: {
        const auto found = std::find(model.begin(), model.end(), value);
        EXPECT_EQ(ours.index(value), found == model.end() ? zo::npos : found - model.begin());
        EXPECT_EQ(ours.remove(value), found == model.end() ? 1 : 0);
        if (found != model.end()) model.erase(found);
        break;
      }
      case 8:
        EXPECT_EQ(ours.remove(value, ZoCompare<Mover>(), true),
                  std::erase(model, value) > 0 ? 0 : 1);
        break;
      case 9:
        EXPECT_EQ(ours.reverse(), 0);
        std::reverse(model.begin(), model.end());
        break;
      case 10: {
        const bool ascending = random() % 2 == 0;
        EXPECT_EQ(ours.sort(TenthsCompare(), ascending), 0);
        std::stable_sort(model.begin(), model.end(), [&](int a, int b) {
          return ascending ? a / 10 < b / 10 : a / 10 > b / 10;
        });
        break;
      }
      case 11:
        if (n > 20) break;
        EXPECT_EQ(ours.append(ours), 0);
        for (unsigned k = 0; k < n; ++k) model.push_back(int{model[k]});
        break;
      case 12: {
        Sequence copy(ours);
        Sequence moved(std::move(ours));
        EXPECT_TRUE(ours.isEmpty());
        EXPECT_TRUE(copy.isEqualTo(moved));
        ours = random() % 2 == 0 ? copy : std::move(moved);
        break;
      }
      case 13:
        if (n > 0) {
          EXPECT_EQ(ours.insertAt(n / 2, *ours.at(i % n)), 0);  // one of its own elements
          const int own = model[i % n];
          model.insert(at(n / 2), own);
        }
        break;
      default:
        EXPECT_EQ(random() % 2 == 0 ? ours.removeFirst() : ours.removeAt(0), 0);
        model.erase(model.begin());
    }
    if (random() % 200 == 0) {
      ours.removeAll(random() % 2 == 0);
      model.clear();
    }
  }

  void compare() const {
    ASSERT_TRUE(isSound(ours));
    ASSERT_EQ(ours.entries(), model.size());
    ASSERT_EQ(telltale::live, static_cast<int>(model.size()));
    std::size_t i = 0;
    for (const Mover& element : ours) ASSERT_EQ(element.value, model[i++]);
    const ZoSequence<Mover>& any = ours;
    i = 0;
    for (const Mover& element : any) ASSERT_EQ(element.value, model[i++]);
  }
};

// A dictionary and the std::map that it must agree with.
template <class Dict>
struct DictPair {
  Dict ours;
  std::map<int, int> model;

  void step(Random& random) {
    const int key = static_cast<int>(random() % 300);
    const int value = static_cast<int>(random() % 1000);
    const auto found = model.find(key);
    const bool present = found != model.end();
    switch (random() % 8) {
      case 0:
      case 1:
      case 2:
        EXPECT_EQ(ours.insertAt(key, value), present ? 1 : 0);
        model.emplace(key, value);
        break;
      case 3:
        EXPECT_EQ(ours.setAt(key, value), present ? 0 : 1);
        if (present) found->second = value;
        break;
      case 4:
        EXPECT_EQ(ours.put(key, value), 0);
        model[key] = value;
        break;
      case 5: {
        Mover out(-7);
        EXPECT_EQ(ours.removeAt(key, out), present ? 0 : 1);
        EXPECT_EQ(out.value, present ? found->second : -7);
        model.erase(key);
        break;
      }
      case 6: {
        EXPECT_EQ(ours.contains(key), present);
        Mover out(-7);
        EXPECT_EQ(ours.getAt(key, out), present ? 0 : 1);
        EXPECT_EQ(out.value, present ? found->second : -7);
        break;
      }
      default: {
        if (random() % 20 != 0) break;
        Dict copy(ours);
        Dict moved(std::move(ours));
        EXPECT_TRUE(ours.isEmpty());
        ours = random() % 2 == 0 ? copy : std::move(moved);
      }
    }
    if (random() % 1500 == 0) {
      ours.removeAll(random() % 2 == 0);
      model.clear();
    }
  }

  void compare() const {
    ASSERT_TRUE(isSound(ours));
    ASSERT_EQ(ours.entries(), model.size());
    ASSERT_EQ(telltale::live, static_cast<int>(2 * model.size()));
    std::map<int, int> seen;
    for (const auto [key, value] : ours) seen.emplace(key.value, value.value);
    ASSERT_EQ(seen, model);
    const ZoDict<Mover, Mover>& any = ours;
    std::size_t n = 0;
    for (const auto [key, value] : any) {
      ASSERT_EQ(model.at(key.value), value.value);
      ++n;
    }
    ASSERT_EQ(n, model.size());
  }
};

template <class Pair>
class RandomOperations : public testing::Test {};

using Pairs = testing::Types<SequencePair<ZoArray<Mover>>, SequencePair<ZoList<Mover>>,
                             DictPair<ZoHashDict<Mover, Mover>>, DictPair<ZoTree<Mover, Mover>>>;
TYPED_TEST_SUITE(RandomOperations, Pairs);

TYPED_TEST(RandomOperations, AgreeWithTheStandardContainer) {
  Random random(20240607);
  const int liveBefore = telltale::live;
  {
    TypeParam pair;
    for (int i = 0; i < kSteps && !this->HasFatalFailure(); ++i) {
      ASSERT_NO_FATAL_FAILURE(pair.step(random)) << "step " << i;
      ASSERT_FALSE(this->HasNonfatalFailure()) << "step " << i;
      if (i % 7 != 0) continue;
      ASSERT_NO_FATAL_FAILURE(pair.compare()) << "step " << i;
    }
  }
  EXPECT_EQ(telltale::live, liveBefore);
  EXPECT_EQ(telltale::broken, 0);
}

}  // namespace
