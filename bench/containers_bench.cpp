// Containers beside those of the standard library.
#include <windows.h>

#include <benchmark/benchmark.h>
#include <zo/containers.h>
#include <zo/text/split_views.h>

#include <algorithm>
#include <bit>
#include <list>
#include <map>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using benchmark::State;

template <class F>
void name(const std::string& work, F function, bool once = false) {
  auto* const made = benchmark::RegisterBenchmark(work.c_str(), function)->UseRealTime();
  if (once) made->Iterations(1)->Repetitions(1);  // takes many seconds
}

std::string per(const char* work, int64_t n, const char* who) {
  return std::string(work) + '/' + std::to_string(n) + '/' + who;
}

// ---- Keys: 8 to 24 letters, digits and blanks, all different ----

enum class Found { kHit, kMiss };

std::vector<std::wstring> keyTexts(int64_t n, Found found) {
  std::mt19937 random(found == Found::kHit ? 5 : 6);
  const std::wstring letters = L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 _";
  std::vector<std::wstring> keys;
  for (int64_t i = 0; i < n; ++i) {
    std::wstring key = (found == Found::kHit ? L"" : L"#") + std::to_wstring(i);
    for (size_t length = 8 + random() % 17; key.size() < length;)
      key += letters[random() % letters.size()];
    keys.push_back(key);
  }
  std::shuffle(keys.begin(), keys.end(), random);
  return keys;
}

// The keys that are looked for: every other one in another case, and none sharing storage with the
// stored ones.
std::vector<std::wstring> askedTexts(int64_t n, Found found) {
  std::vector<std::wstring> keys = keyTexts(n, found);
  for (size_t i = 0; i < keys.size(); i += 2) {
    for (wchar_t& c : keys[i]) c = c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
  }
  std::shuffle(keys.begin(), keys.end(), std::mt19937(9));
  return keys;
}

std::vector<ZoString> strings(const std::vector<std::wstring>& texts) {
  std::vector<ZoString> made;
  for (const std::wstring& text : texts) made.emplace_back(text.c_str());
  return made;
}

// ---- The peer's folding hash and equality: a table for ASCII, the runtime for the rest ----

struct Fold {
  wchar_t table[128];
  constexpr Fold() : table() {
    for (int c = 0; c < 128; ++c)
      table[c] = static_cast<wchar_t>(c >= 'a' && c <= 'z' ? c - 32 : c);
  }
  wchar_t operator()(wchar_t c) const {
    return c < 128 ? table[c] : static_cast<wchar_t>(towupper(c));
  }
};
constexpr Fold kFold;

struct FoldingHash {
  size_t operator()(const std::wstring& text) const {
    size_t h = 14695981039346656037u;
    for (const wchar_t c : text) h = (h ^ kFold(c)) * 1099511628211u;
    return h;
  }
};

struct FoldingEqual {
  bool operator()(const std::wstring& a, const std::wstring& b) const {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
      if (a[i] != b[i] && kFold(a[i]) != kFold(b[i])) return false;
    }
    return true;
  }
};

using OurDict = ZoHashDict<int, ZoString>;
using PeerDict = std::unordered_map<std::wstring, int, FoldingHash, FoldingEqual>;

void findOurs(State& state, int64_t n, Found found) {
  OurDict dict;
  for (const ZoString& key : strings(keyTexts(n, Found::kHit)))
    static_cast<void>(dict.insertAt(key, 1));
  const std::vector<ZoString> asked = strings(askedTexts(n, found));
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(dict.at(asked[i]));
    if (++i == asked.size()) i = 0;
  }
}

void findPeer(State& state, int64_t n, Found found) {
  PeerDict dict;
  for (const std::wstring& key : keyTexts(n, Found::kHit)) dict.emplace(key, 1);
  const std::vector<std::wstring> asked = askedTexts(n, found);
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(dict.find(asked[i]));
    if (++i == asked.size()) i = 0;
  }
}

void insertOurs(State& state, int64_t n) {
  const std::vector<ZoString> keys = strings(keyTexts(n, Found::kHit));
  for (auto _ : state) {
    OurDict dict;
    for (const ZoString& key : keys) static_cast<void>(dict.insertAt(key, 1));
    benchmark::DoNotOptimize(dict.entries());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void insertPeer(State& state, int64_t n) {
  const std::vector<std::wstring> keys = keyTexts(n, Found::kHit);
  for (auto _ : state) {
    PeerDict dict;
    for (const std::wstring& key : keys) dict.emplace(key, 1);
    benchmark::DoNotOptimize(dict.size());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

// ---- Append ----

template <class Container>
void append(Container& container, const typename Container::value_type& value) {
  if constexpr (requires { container.append(value); }) {
    static_cast<void>(container.append(value));
  } else {
    container.push_back(value);
  }
}

template <class Container>
void appendAll(State& state, int64_t n) {
  for (auto _ : state) {
    Container container;
    for (int64_t i = 0; i < n; ++i) append(container, static_cast<int>(i));
    benchmark::DoNotOptimize(&container);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
}

template <class Container, class String>
void appendStrings(State& state, int64_t n) {
  const String value(L"a part of a drawing");
  for (auto _ : state) {
    Container container;
    for (int64_t i = 0; i < n; ++i) append(container, value);
    benchmark::DoNotOptimize(&container);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
}

// ---- Iterate ----

template <class Container>
Container filled(int64_t n) {
  Container container;
  for (int64_t i = 0; i < n; ++i) append(container, static_cast<int>(i));
  return container;
}

// A little work on each element, which depends on that before: a shorter loop would measure how the
// compiler has aligned it.
int use(int sum, int element) {
  return static_cast<int>(std::rotl(static_cast<unsigned>(sum), 1)) ^ element;
}

template <class Container>
void iterateRange(State& state, int64_t n) {
  Container container = filled<Container>(n);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&container);
    int sum = 0;
    for (const int& element : container) sum = use(sum, element);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

template <class Container, class Iterator>
void iterateIterator(State& state, int64_t n) {
  Container container = filled<Container>(n);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&container);
    int sum = 0;
    for (Iterator it(container); it.isValid(); it.next()) sum = use(sum, *it.current());
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

template <class Container>
void iterateIndex(State& state, int64_t n) {
  Container container = filled<Container>(n);
  const auto count = static_cast<unsigned>(n);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&container);
    int sum = 0;
    for (unsigned i = 0; i < count; ++i) sum = use(sum, container[i]);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

// ---- Remove every third element of a list while walking it ----

void removeOurs(State& state, int64_t n) {
  for (auto _ : state) {
    state.PauseTiming();
    {
      ZoList<int> list = filled<ZoList<int>>(n);
      state.ResumeTiming();
      for (ZoListIterator<int> it(list); it.isValid();) {
        if (*it.current() % 3 == 0) {
          it.remove();
        } else {
          it.next();
        }
      }
      benchmark::DoNotOptimize(list.entries());
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

void removePeer(State& state, int64_t n) {
  for (auto _ : state) {
    state.PauseTiming();
    {
      std::list<int> list = filled<std::list<int>>(n);
      state.ResumeTiming();
      for (auto it = list.begin(); it != list.end();)
        it = *it % 3 == 0 ? list.erase(it) : std::next(it);
      benchmark::DoNotOptimize(list.size());
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

// ---- Tree with text keys, ignoring case ----

// The peers ask the platform at every comparison.
struct LessIgnoringCase {
  bool operator()(const ZoString& a, const ZoString& b) const {
    return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a.data(),
                          static_cast<int>(a.length()), b.data(),
                          static_cast<int>(b.length())) == CSTR_LESS_THAN;
  }
};
using OurTree = ZoTree<int, ZoString>;
using PeerTree = std::map<ZoString, int, LessIgnoringCase>;

void insertInto(OurTree& tree, const ZoString& key) { static_cast<void>(tree.insertAt(key, 1)); }
void insertInto(PeerTree& tree, const ZoString& key) { tree.emplace(key, 1); }
bool isIn(const OurTree& tree, const ZoString& key) { return tree.at(key) != nullptr; }
bool isIn(const PeerTree& tree, const ZoString& key) { return tree.find(key) != tree.end(); }
int valueOf(const zo::DictEntry<const int, ZoString>& entry) { return entry.value; }
int valueOf(const std::pair<const ZoString, int>& entry) { return entry.second; }

template <class Tree>
void treeInsert(State& state, int64_t n) {
  const std::vector<ZoString> keys = strings(keyTexts(n, Found::kHit));
  for (auto _ : state) {
    Tree tree;
    for (const ZoString& key : keys) insertInto(tree, key);
    benchmark::DoNotOptimize(&tree);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

template <class Tree>
void treeFind(State& state, int64_t n) {
  Tree tree;
  for (const ZoString& key : strings(keyTexts(n, Found::kHit))) insertInto(tree, key);
  const std::vector<ZoString> asked = strings(askedTexts(n, Found::kHit));
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(isIn(tree, asked[i]));
    if (++i == asked.size()) i = 0;
  }
}

template <class Tree>
void treeIterate(State& state, int64_t n) {
  Tree tree;
  for (const ZoString& key : strings(keyTexts(n, Found::kHit))) insertInto(tree, key);
  for (auto _ : state) {
    int sum = 0;
    for (const auto& entry : std::as_const(tree)) sum += valueOf(entry);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

// ---- Sort ----

void sortOurs(State& state, int64_t n) {
  ZoArray<ZoString> keys;
  for (const ZoString& key : strings(keyTexts(n, Found::kHit))) static_cast<void>(keys.append(key));
  for (auto _ : state) {
    ZoArray<ZoString> array(keys);
    static_cast<void>(array.sort(ZoCICompare<ZoString>()));
    benchmark::DoNotOptimize(array.data());
  }
}

void sortPeer(State& state, int64_t n) {
  const std::vector<ZoString> keys = strings(keyTexts(n, Found::kHit));
  for (auto _ : state) {
    std::vector<ZoString> vector(keys);
    std::stable_sort(vector.begin(), vector.end(), LessIgnoringCase());
    benchmark::DoNotOptimize(vector.data());
  }
}

// ---- Splitting ----

// As many units as given, cut into 100,000 pieces of random length by commas and semicolons.
std::wstring delimitedText(size_t units) {
  std::mt19937 random(8);
  std::wstring text(units, L'x');
  for (wchar_t& c : text) c = static_cast<wchar_t>(L'a' + random() % 26);
  for (int cuts = 0; cuts < 99'999;) {
    wchar_t& c = text[random() % units];
    if (c == L',' || c == L';') continue;
    c = random() % 2 == 0 ? L',' : L';';
    ++cuts;
  }
  return text;
}

void splitOurs(State& state, int64_t units) {
  const ZoString text(delimitedText(static_cast<size_t>(units)).c_str());
  for (auto _ : state) {
    ZoArray<ZoString> pieces;
    benchmark::DoNotOptimize(text.split(L",;", pieces));
  }
}

// The peer of the views: its pieces kept as they come, as by split; and its views, none of them
// kept.
void splitViewsOurs(State& state, int64_t units) {
  const std::wstring text = delimitedText(static_cast<size_t>(units));
  for (auto _ : state) {
    size_t sum = 0;
    for (const std::wstring_view piece : zoSplitViews(text, L",;")) sum += piece.size();
    benchmark::DoNotOptimize(sum);
  }
}

void splitViewsPeer(State& state, int64_t units) {
  const std::wstring text = delimitedText(static_cast<size_t>(units));
  const std::wstring_view view = text;
  for (auto _ : state) {
    size_t sum = 0, from = 0;
    for (size_t at; (at = view.find_first_of(L",;", from)) != std::wstring::npos; from = at + 1)
      sum += view.substr(from, at - from).size();
    sum += view.substr(from).size();
    benchmark::DoNotOptimize(sum);
  }
}

void splitPeer(State& state, int64_t units) {
  const std::wstring text = delimitedText(static_cast<size_t>(units));
  for (auto _ : state) {
    std::vector<std::wstring> pieces;
    size_t from = 0;
    for (size_t at; (at = text.find_first_of(L",;", from)) != std::wstring::npos; from = at + 1)
      pieces.push_back(text.substr(from, at - from));
    pieces.push_back(text.substr(from));
    benchmark::DoNotOptimize(pieces.data());
  }
}

template <class Ours, class Peer>
void pair(const char* work, int64_t n, Ours ours, const char* peerName, Peer peer,
          bool once = false) {
  name(per(work, n, "ours"), [=](State& state) { ours(state, n); }, once);
  name(per(work, n, peerName), [=](State& state) { peer(state, n); }, once);
}

[[maybe_unused]] const bool registered = [] {
  constexpr const char* kUnordered = "peer:std::unordered_map";
  constexpr const char* kVector = "peer:std::vector";
  constexpr const char* kList = "peer:std::list";
  constexpr const char* kMap = "peer:std::map";
  constexpr int64_t k1000 = 1000, k100000 = 100'000, kMillion = 1'000'000;

  for (const int64_t n : {k1000, k100000}) {
    pair(
        "DictFindHit", n, [](State& s, int64_t k) { findOurs(s, k, Found::kHit); }, kUnordered,
        [](State& s, int64_t k) { findPeer(s, k, Found::kHit); });
    pair(
        "DictFindMiss", n, [](State& s, int64_t k) { findOurs(s, k, Found::kMiss); }, kUnordered,
        [](State& s, int64_t k) { findPeer(s, k, Found::kMiss); });
  }
  for (const int64_t n : {k1000, k100000, kMillion}) {
    pair("DictInsert", n, insertOurs, kUnordered, insertPeer);
    pair("ArrayAppendInt", n, appendAll<ZoArray<int>>, kVector, appendAll<std::vector<int>>);
    pair("ListAppend", n, appendAll<ZoList<int>>, kList, appendAll<std::list<int>>);
    pair("ListIterate", n, iterateRange<ZoList<int>>, kList, iterateRange<std::list<int>>);
    pair("ListRemoveMiddle", n, removeOurs, kList, removePeer);
    pair("TreeInsert", n, treeInsert<OurTree>, kMap, treeInsert<PeerTree>, n == kMillion);
    pair("SortIgnoringCase", n, sortOurs, "peer:std::stable_sort", sortPeer, n == kMillion);
  }
  pair("ArrayAppendString", k100000, appendStrings<ZoArray<ZoString>, ZoString>, kVector,
       appendStrings<std::vector<std::wstring>, std::wstring>);
  pair("ArrayIterateIterator", kMillion, iterateIterator<ZoArray<int>, ZoArrayIterator<int>>,
       kVector, iterateRange<std::vector<int>>);
  pair("ArrayIterateRange", kMillion, iterateRange<ZoArray<int>>, kVector,
       iterateRange<std::vector<int>>);
  pair("ArrayIterateIndex", kMillion, iterateIndex<ZoArray<int>>, kVector,
       iterateIndex<std::vector<int>>);
  // A mebibyte of UTF-16 gives pieces of four characters, which the peer keeps without an
  // allocation; a mebicharacter gives pieces of nine, which it does not.
  for (const int64_t units : {512 * 1024, 1024 * 1024})
    pair("Split100000Pieces", units, splitOurs, kVector, splitPeer);
  for (const int64_t units : {512 * 1024, 1024 * 1024}) {
    pair("SplitViews100000Pieces", units, splitViewsOurs, kVector, splitPeer);
    name(per("SplitViews100000Pieces", units, "peer:std::wstring_view"),
         [=](State& state) { splitViewsPeer(state, units); });
  }
  pair("TreeFind", k100000, treeFind<OurTree>, kMap, treeFind<PeerTree>);
  pair("TreeIterate", k100000, treeIterate<OurTree>, kMap, treeIterate<PeerTree>);
  return true;
}();

}  // namespace
