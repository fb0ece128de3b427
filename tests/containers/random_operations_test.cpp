// One suite of random operations for every container, against a standard one that does the same,
// with an iterator that stands somewhere while the container changes.
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

using telltale::Copier;
using telltale::Mover;
using Random = std::mt19937;

template <class Container>
bool isSound(const Container& c) {
  if constexpr (requires { c.engine().validate(); }) {
    return c.engine().validate();
  } else if constexpr (requires { c.policy(); }) {
    const ZoHashKey<Mover> key(c.policy());  // also finds every key
    return c.engine().validate(&key);
  } else {
    const ZoCICompare<Mover> compare;
    const ZoTreeCompare<Mover> adapter(compare);
    return c.engine().validate(&adapter);
  }
}

// All keys hash alike.
struct Flood : ZoHashValue<Mover> {
  unsigned hash(const Mover&) const override { return 5; }
  unsigned fingerprint(const Mover& key) const override {
    return static_cast<unsigned>(key.value) / 2;
  }
};
using FloodedDict = ZoHashDict<Mover, Mover, Flood>;

// A sequence and the std::vector that it must agree with. An array's iterator keeps its position,
// that of a list its element.
template <class Sequence, class Iterator>
class SequenceModel {
 public:
  using Element = typename Sequence::value_type;

  void step(Random& random) {
    const int value = static_cast<int>(random() % 50);
    const unsigned n = static_cast<unsigned>(model_.size());
    const unsigned i = random() % (n + 2);  // now and then past the end
    const bool inside = i < n;
    const bool either = random() % 2 == 0;
    switch (random() % 12) {
      case 0:
      case 1:
      case 2:
        EXPECT_EQ(i == n   ? ours_.append(value)
                  : i == 0 ? ours_.prepend(value)
                           : ours_.insertAt(i, value),
                  i <= n ? 0 : 1);
        if (i <= n) model_.insert(at(i), value);
        break;
      case 3: {
        Element out(-7);
        EXPECT_EQ(i == 0       ? ours_.removeFirst(out)
                  : i + 1 == n ? ours_.removeLast(out)
                               : ours_.removeAt(i, out),
                  inside ? 0 : 1);
        EXPECT_EQ(out.value, inside ? model_[i] : -7);
        if (inside) model_.erase(at(i));
        break;
      }
      case 4:
        EXPECT_EQ(ours_.setAt(i, value), inside ? 0 : 1);
        if (inside) model_[i] = value;
        break;
      case 5: {
        const unsigned count = random() % 4;
        EXPECT_EQ(ours_.fillAt(i, count, value), i <= n ? 0 : 1);
        if (i > n) break;
        model_.resize(std::max<std::size_t>(n, i + count));
        std::fill_n(at(i), count, value);
        break;
      }
      case 6: {
        const auto found = std::find(model_.begin(), model_.end(), value);
        const bool there = found != model_.end();
        EXPECT_EQ(ours_.index(value), there ? found - model_.begin() : zo::npos);
        EXPECT_EQ(ours_.remove(value, ZoCompare<Element>(), either), there ? 0 : 1);
        if (there) model_.erase(found);
        if (either) std::erase(model_, value);
        break;
      }
      case 7:
        moveIterator(random, value, i);
        break;
      case 8: {
        const auto byTens = zo::compareBy<Element>(
            [](const Element& a, const Element& b) { return a.value / 10 - b.value / 10; });
        EXPECT_EQ(ours_.sort(byTens, either), 0);
        std::stable_sort(model_.begin(), model_.end(),
                         [&](int a, int b) { return either ? a / 10 < b / 10 : a / 10 > b / 10; });
        break;
      }
      case 9:
        if (n > 20) break;
        EXPECT_EQ(ours_.append(ours_), 0);
        for (unsigned k = 0; k < n; ++k) model_.push_back(int{model_[k]});
        break;
      case 10:
        if (n == 0) break;
        EXPECT_EQ(ours_.insertAt(n / 2, *ours_.at(i % n)), 0);  // one of its own elements
        model_.insert(at(n / 2), int{model_[i % n]});
        break;
      default: {
        Sequence copy(ours_);
        Sequence moved(std::move(ours_));
        EXPECT_TRUE(ours_.isEmpty());
        EXPECT_TRUE(copy.isEqualTo(moved));
        ours_ = either ? copy : std::move(moved);
        break;
      }
    }
    if (random() % 200 == 0) {
      ours_.removeAll(either);
      model_.clear();
    }
  }

  void compare() {
    ASSERT_TRUE(isSound(ours_));
    ASSERT_EQ(ours_.entries(), model_.size());
    ASSERT_EQ(telltale::live, static_cast<int>(model_.size()));
    std::size_t i = 0;
    for (const Element& element : ours_) ASSERT_EQ(element.value, model_[i++]);
    element_ = ours_.at(standsAt());  // once gone, another may come to lie there
    ASSERT_EQ(it_.current(), element_);
  }

 private:
  auto at(unsigned i) { return model_.begin() + i; }

  unsigned standsAt() const {
    if constexpr (std::is_same_v<Iterator, ZoArrayIterator<Element>>)
      return position_ < model_.size() ? position_ : zo::npos;
    unsigned i = 0;
    for (const Element& element : ours_) {
      if (&element == element_) return i;
      ++i;
    }
    return zo::npos;
  }

  void moveIterator(Random& random, int value, unsigned i) {
    const unsigned here = standsAt();
    const auto expectMove = [&](bool moved, unsigned to) {
      EXPECT_EQ(moved, to < model_.size());
      position_ = moved ? to : zo::npos;
    };
    switch (random() % 5) {
      case 0:
        expectMove(it_.next(), here == zo::npos ? here : here + 1);
        break;
      case 1:
        expectMove(it_.prev(), here == zo::npos ? here : here - 1);
        break;
      case 2:
        expectMove(it_.to(i), i);
        break;
      case 3:
        position_ = std::min(here, ours_.entries());
        EXPECT_EQ(it_.insert(value), 0);
        model_.insert(at(position_), value);
        break;
      default: {
        Element out(-7);
        EXPECT_EQ(it_.remove(out), here == zo::npos ? 1 : 0);
        EXPECT_EQ(out.value, here == zo::npos ? -7 : model_[here]);
        if (here == zo::npos) return;
        model_.erase(at(here));
        position_ = here;  // where the following one is now
      }
    }
    element_ = ours_.at(position_);
  }

  Sequence ours_;
  std::vector<int> model_;
  Iterator it_{ours_};
  unsigned position_ = 0;
  const Element* element_ = nullptr;
};

// A dictionary and the std::map that it must agree with.
template <class Dict>
class DictModel {
 public:
  void step(Random& random) {
    const int key = static_cast<int>(random() % 300);
    const int value = static_cast<int>(random() % 1000);
    const auto found = model_.find(key);
    const bool present = found != model_.end();
    Mover out(-7);
    switch (random() % 9) {
      case 0:
      case 1:
      case 2:
        EXPECT_EQ(ours_.insertAt(key, value), present ? 1 : 0);
        model_.emplace(key, value);
        break;
      case 3:
      case 4: {
        const bool putting = value % 2 == 0;
        EXPECT_EQ(putting ? ours_.put(key, value) : ours_.setAt(key, value),
                  present || putting ? 0 : 1);
        if (present || putting) model_[key] = value;
        break;
      }
      case 5:
        EXPECT_EQ(ours_.removeAt(key, out), present ? 0 : 1);
        EXPECT_EQ(out.value, present ? found->second : -7);
        model_.erase(key);
        break;
      case 6:
        EXPECT_EQ(ours_.contains(key), present);
        EXPECT_EQ(ours_.getAt(key, out), present ? 0 : 1);
        EXPECT_EQ(out.value, present ? found->second : -7);
        EXPECT_EQ(ours_.findKey(key, out), present ? 0 : 1);
        break;
      case 7:
        if constexpr (kIterates) moveIterator(value < 300);
        break;
      default: {
        if (random() % 20 != 0) break;
        Dict copy(ours_);
        Dict moved(std::move(ours_));
        EXPECT_TRUE(ours_.isEmpty());
        ours_ = random() % 2 == 0 ? copy : std::move(moved);
      }
    }
    if (random() % 1500 == 0) {
      ours_.removeAll(random() % 2 == 0);
      model_.clear();
    }
  }

  void compare() {
    ASSERT_TRUE(isSound(ours_));
    ASSERT_EQ(ours_.entries(), model_.size());
    ASSERT_EQ(telltale::live, static_cast<int>(2 * model_.size()));
    for (const auto [key, value] : static_cast<const ZoDict<Mover, Mover>&>(ours_))
      ASSERT_EQ(model_.at(key.value), value.value);
    if constexpr (kIterates) {
      if (std::ranges::count(inOrder(), element_) == 0) element_ = nullptr;
      ASSERT_EQ(it_.current(), element_);
    }
  }

 private:
  // Only hash dictionaries have an iterator that survives changes.
  static constexpr bool kIterates = requires(Dict& dict) { dict.policy(); };

  std::vector<const Mover*> inOrder() const {
    std::vector<const Mover*> values;
    for (const auto [key, value] : ours_) values.push_back(&value);
    return values;
  }

  void moveIterator(bool removing) {
    const std::vector<const Mover*> values = inOrder();
    const auto here = std::ranges::find(values, element_);
    const bool valid = here != values.end();
    const auto following = valid ? here + 1 : values.begin();
    element_ = following == values.end() ? nullptr : *following;
    if (!valid) {
      EXPECT_EQ(it_.toFirst(), element_ != nullptr);
    } else if (!removing) {
      EXPECT_EQ(it_.next(), element_ != nullptr);
    } else {
      const int key = it_.key()->value;
      Mover out(-7);
      EXPECT_EQ(it_.remove(out), 0);
      EXPECT_EQ(out.value, model_.at(key));
      model_.erase(key);
    }
  }

  struct NoIterator {
    explicit NoIterator(Dict&) {}
  };
  template <class H>
  static ZoHashDictIterator<Mover, Mover, H> iteratorOf(const ZoHashDict<Mover, Mover, H>&);
  static NoIterator iteratorOf(const ZoTree<Mover, Mover>&);

  Dict ours_;
  std::map<int, int> model_;
  decltype(iteratorOf(Dict())) it_{ours_};
  const Mover* element_ = nullptr;
};

template <class Model>
class RandomOperations : public testing::Test {};

using Models = testing::Types<SequenceModel<ZoArray<Mover>, ZoArrayIterator<Mover>>,
                              SequenceModel<ZoArray<Copier>, ZoArrayIterator<Copier>>,
                              SequenceModel<ZoList<Mover>, ZoListIterator<Mover>>,
                              DictModel<ZoHashDict<Mover, Mover>>, DictModel<FloodedDict>,
                              DictModel<ZoTree<Mover, Mover>>>;
TYPED_TEST_SUITE(RandomOperations, Models);

TYPED_TEST(RandomOperations, AgreeWithTheStandardContainer) {
  Random random(20240607);
  const int liveBefore = telltale::live;
  {
    TypeParam model;
    for (int i = 0; i < kSteps; ++i) {
      model.step(random);
      ASSERT_NO_FATAL_FAILURE(model.compare()) << "step " << i;
      ASSERT_FALSE(this->HasNonfatalFailure()) << "step " << i;
    }
  }
  EXPECT_EQ(telltale::live, liveBefore);
  EXPECT_EQ(telltale::broken, 0);
}

}  // namespace
