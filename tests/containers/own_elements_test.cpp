// Values that are elements of the container they are given to, or parts of one: the container may
// move them before it has used them.
#include <gtest/gtest.h>
#include <zo/containers.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tell_tale.h"

namespace {

using telltale::Copier;
using telltale::Mover;
using telltale::Thrower;

using Model = std::vector<int>;
constexpr unsigned kCount = 8;  // fills an array

template <class S>
struct Operation {
  const char* name;
  std::function<int(S&, unsigned own)> run;
  std::function<void(Model&, unsigned own)> expected;
};

// Inserts a copy of one of the elements.
template <class S, class Run>
Operation<S> inserting(const char* name, unsigned place, Run run) {
  return {name, run, [=](Model& m, unsigned own) { m.insert(m.begin() + place, int{m[own]}); }};
}

template <class S, class Iterator>
std::vector<Operation<S>> operations() {
  static const ZoCompare<typename S::value_type> compare;
  return {
      inserting<S>("append", 8, [](S& s, unsigned i) { return s.append(s[i]); }),
      inserting<S>("append moved", 8, [](S& s, unsigned i) { return s.append(std::move(s[i])); }),
      inserting<S>("emplace", 8, [](S& s, unsigned i) { return s.emplace(s[i]); }),
      inserting<S>("emplace part", 8, [](S& s, unsigned i) { return s.emplace(s[i].value); }),
      inserting<S>("emplace moved", 8, [](S& s, unsigned i) { return s.emplace(std::move(s[i])); }),
      inserting<S>("prepend", 0, [](S& s, unsigned i) { return s.prepend(s[i]); }),
      inserting<S>("prepend moved", 0, [](S& s, unsigned i) { return s.prepend(std::move(s[i])); }),
      inserting<S>("insert", 4, [](S& s, unsigned i) { return s.insertAt(4, s[i]); }),
      inserting<S>("insert moved", 4,
                   [](S& s, unsigned i) { return s.insertAt(4, std::move(s[i])); }),
      inserting<S>("iterator", 3,
                   [](S& s, unsigned i) {
                     Iterator it(s);
                     return it.to(3) ? it.insert(s[i]) : 9;
                   }),
      {"fill", [](S& s, unsigned i) { return s.fillAt(2, 9, s[i]); },
       [](Model& m, unsigned own) {
         const int value = m[own];
         m.resize(2);
         m.insert(m.end(), 9, value);
       }},
      {"set", [](S& s, unsigned i) { return s.setAt(2, s[i]); },
       [](Model& m, unsigned own) { m[2] = m[own]; }},
      {"append itself", [](S& s, unsigned) { return s.append(s); },
       [](Model& m, unsigned) { m.insert(m.end(), {0, 1, 2, 3, 4, 5, 6, 7}); }},
      {"copy itself", [](S& s, unsigned) { return s.copyFrom(s); }, [](Model&, unsigned) {}},
      {"remove all", [](S& s, unsigned i) { return s.remove(s[i], compare, true); },
       [](Model& m, unsigned own) { m.erase(m.begin() + own); }},
      {"remove into", [](S& s, unsigned i) { return s.removeAt(3, s[i]); },
       [](Model& m, unsigned own) {
         m[own] = m[3];
         m.erase(m.begin() + 3);
       }},
  };
}

template <class S, class Iterator>
void expectOwnElementsToDo() {
  for (const auto& [name, run, expected] : operations<S, Iterator>()) {
    for (unsigned own = 0; own < 2 * kCount; ++own) {
      SCOPED_TRACE(std::string(name) + ", element " + std::to_string(own));
      const bool full = own < kCount;
      S subject;
      Model model;
      if constexpr (requires { subject.resize(1); }) {
        ASSERT_EQ(subject.resize(full ? kCount : 3 * kCount), 0);
      }
      for (unsigned i = 0; i < kCount; ++i) {
        model.push_back(static_cast<int>(i));
        ASSERT_EQ(subject.append(static_cast<int>(i)), 0);
      }
      ASSERT_EQ(run(subject, own % kCount), 0);
      expected(model, own % kCount);
      ASSERT_EQ(subject.entries(), model.size());
      unsigned moved = 0;
      for (unsigned i = 0; i < model.size(); ++i) {
        // What a value was moved from may stay behind without one.
        if (subject[i].value == -1 && model[i] == static_cast<int>(own % kCount) && !moved++)
          continue;
        EXPECT_EQ(subject[i].value, model[i]) << i;
      }
    }
  }
  EXPECT_EQ(telltale::live, 0);
  EXPECT_EQ(telltale::broken, 0);
}

TEST(OwnElements, AreGoodValuesForSequences) {
  expectOwnElementsToDo<ZoArray<Mover>, ZoArrayIterator<Mover>>();
  expectOwnElementsToDo<ZoArray<Copier>, ZoArrayIterator<Copier>>();
  expectOwnElementsToDo<ZoArray<Thrower>, ZoArrayIterator<Thrower>>();
  expectOwnElementsToDo<ZoList<Mover>, ZoListIterator<Mover>>();
  expectOwnElementsToDo<ZoList<Copier>, ZoListIterator<Copier>>();
}

template <class Dict>
void expectOwnEntriesToDo() {
  constexpr int kEntries = 90;  // a hash table grows next
  for (int k = 0; k < kEntries; k += 10) {
    Dict dict;
    for (int i = 0; i < kEntries; ++i) ASSERT_EQ(dict.insertAt(i, i + 1000), 0);
    const auto keyOf = [&](int key) -> const Mover& {
      for (const auto [stored, value] : dict) {
        if (stored.value == key) return stored;
      }
      return *dict.at(key);
    };
    EXPECT_EQ(dict.insertAt(200, *dict.at(k)), 0);
    EXPECT_EQ(dict.insertAt(201, std::move(*dict.at(k + 1))), 0);
    EXPECT_EQ(dict.put(keyOf(k + 2), *dict.at(k)), 0);
    EXPECT_EQ(dict.insertAt(keyOf(k + 3), *dict.at(k)), 1);
    EXPECT_EQ(dict.removeAt(keyOf(k + 3)), 0);
    EXPECT_EQ(dict.removeAt(keyOf(k + 4), *dict.at(k + 4)), 0);
    EXPECT_EQ(dict.insertAll(dict), 0);
    dict = static_cast<const ZoDict<Mover, Mover>&>(dict);
    EXPECT_EQ(dict.entries(), static_cast<unsigned>(kEntries));
    EXPECT_EQ(dict.at(200)->value, k + 1000);
    EXPECT_EQ(dict.at(201)->value, k + 1001);
    EXPECT_EQ(dict.at(k + 2)->value, k + 1000);
  }
  EXPECT_EQ(telltale::live, 0);
  EXPECT_EQ(telltale::broken, 0);
}

TEST(OwnElements, AreGoodKeysAndValuesForDictionaries) {
  expectOwnEntriesToDo<ZoHashDict<Mover, Mover>>();
  expectOwnEntriesToDo<ZoTree<Mover, Mover>>();
}

}  // namespace
