// How a PlainOrder comes about: what the platform is asked, and when.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstring>

#include "text/plain_order.h"

namespace zo {

class PlainOrderLearner {
 public:
  PlainOrderLearner(LocaleId locale, std::size_t number, PlainOrder& order) noexcept
      : locale_(locale), order_(order) {
    order_.number_ = static_cast<std::uint8_t>(number);
  }

  // Leaves an order in which no text is plain when no sense can be made of the platform's answers.
  void learn() noexcept {
    order_.locale_ = locale_;
    makeAllOdd();
    if (!learnTail()) return;
    for (wchar_t c = L' '; c <= L'~'; ++c) learnWeight(c);
    if (!rankAsCompared()) return makeAllOdd();
    order_.foldsByLetter_ = equalLettersOfBothCases();
    for (wchar_t c = L' '; c <= L'~'; ++c) {
      if (hasWeight(c)) learnFollowers({&c, 1}, L' ', L'~');
    }
    // Three letters as one, where no two of them are.
    for (wchar_t text[] = {L'a', L'a'}; text[0] <= L'z'; ++text[0]) {
      for (text[1] = L'a'; text[1] <= L'z'; ++text[1]) {
        if (order_.isPlain({text, 2})) learnFollowers({text, 2}, L'a', L'z');
      }
    }
    order_.isRegular_ = order_.foldsByLetter_ && isAllPlain();
  }

 private:
  static constexpr std::size_t kMostUnits = 200;
  static constexpr std::size_t kMostBytes =
      4 * PlainOrder::kWeightBytes * kMostUnits + PlainOrder::kTailBytes;

  void makeAllOdd() noexcept {
    std::fill_n(order_.traits_, PlainOrder::kCharacters, PlainOrder::kOdd);
  }

  // The number of bytes of a text's sort key in key_; 0 when there is none.
  std::size_t askKey(std::wstring_view text) noexcept {
    const int size =
        LCMapStringW(locale_, LCMAP_SORTKEY | NORM_IGNORECASE, text.data(),
                     static_cast<int>(text.size()), reinterpret_cast<wchar_t*>(key_), kMostBytes);
    return size > 0 ? static_cast<std::size_t>(size) : 0;
  }

  bool learnTail() noexcept {
    if (askKey(L"a") != PlainOrder::kWeightBytes + PlainOrder::kTailBytes) return false;
    std::memcpy(order_.tail_, key_ + PlainOrder::kWeightBytes, PlainOrder::kTailBytes);
    return true;
  }

  void learnWeight(wchar_t c) noexcept {
    if (c == L'-' || c == L'\'') return;
    if (askKey({&c, 1}) != PlainOrder::kWeightBytes + PlainOrder::kTailBytes) return;
    if (std::memcmp(key_ + PlainOrder::kWeightBytes, order_.tail_, PlainOrder::kTailBytes) != 0)
      return;
    if (key_[0] <= order_.tail_[0]) return;  // a text would not precede those that it begins
    order_.weights_[c] = static_cast<std::uint16_t>(key_[0] << 8 | key_[1]);
    order_.traits_[c] = 0;
  }

  [[nodiscard]] bool hasWeight(wchar_t c) const noexcept {
    return (order_.traits_[c] & PlainOrder::kOdd) == 0;
  }

  // False when the keys do not have the order that comparing gives, from one character to the next.
  bool rankAsCompared() noexcept {
    wchar_t plain[PlainOrder::kCharacters];
    std::size_t n = 0;
    for (wchar_t c = L' '; c <= L'~'; ++c) {
      if (hasWeight(c)) plain[n++] = c;
    }
    const std::uint16_t* const weights = order_.weights_;
    std::sort(plain, plain + n,
              [weights](wchar_t a, wchar_t b) { return weights[a] < weights[b]; });
    std::uint8_t rank = 1;
    for (std::size_t i = 0; i < n; order_.ranks_[plain[i++]] = rank) {
      if (i == 0) continue;
      const bool same = weights[plain[i - 1]] == weights[plain[i]];
      if (CompareStringW(locale_, NORM_IGNORECASE, plain + i - 1, 1, plain + i, 1) !=
          (same ? CSTR_EQUAL : CSTR_LESS_THAN))
        return false;
      if (!same) ++rank;
    }
    return true;
  }

  [[nodiscard]] bool equalLettersOfBothCases() const noexcept {
    for (wchar_t c = L'a'; c <= L'z'; ++c) {
      const wchar_t upper = c - L'a' + L'A';
      if (CompareStringW(locale_, NORM_IGNORECASE, &c, 1, &upper, 1) != CSTR_EQUAL) return false;
    }
    return true;
  }

  [[nodiscard]] bool isAllPlain() const noexcept {
    for (wchar_t c = L' '; c <= L'~'; ++c) {
      if (order_.traits_[c] != 0 && c != L'-' && c != L'\'') return false;
    }
    return true;
  }

  // Whether the platform's key of a text is that of its characters.
  bool isAsWeighed(std::wstring_view text) noexcept {
    unsigned char expected[kMostBytes];
    order_.writeKey(text, expected);
    const std::size_t size = text.size() * PlainOrder::kWeightBytes + PlainOrder::kTailBytes;
    return askKey(text) == size && std::memcmp(key_, expected, size) == 0;
  }

  // Notes which characters make one with the given ones before them.
  void learnFollowers(std::wstring_view before, wchar_t first, wchar_t last) noexcept {
    wchar_t text[kMostUnits];
    // All of them in one text at first: most have none.
    std::size_t n = 0;
    for (wchar_t c = first; c <= last && n + before.size() < kMostUnits; ++c) {
      if (!hasWeight(c)) continue;
      n += before.copy(text + n, before.size());
      text[n++] = c;
    }
    if (isAsWeighed({text, n})) return;
    before.copy(text, before.size());
    for (wchar_t c = first; c <= last; ++c) {
      text[before.size()] = c;
      if (!hasWeight(c) || isAsWeighed({text, before.size() + 1})) continue;
      order_.foldsByLetter_ = false;
      order_.traits_[before.back()] |= PlainOrder::kBegins;
      order_.traits_[c] |= PlainOrder::kEnds;
    }
  }

  LocaleId locale_;
  PlainOrder& order_;
  unsigned char key_[kMostBytes];
};

namespace {

// Learning takes about as long as so many comparisons by the platform.
constexpr unsigned kAskedBeforeLearning = 4096;

PlainOrder s_orders[PlainOrder::kLocales];
std::atomic<std::size_t> s_learnt{0};  // the first so many of them, which no longer change
std::atomic<const PlainOrder*> s_last{nullptr};
std::atomic<unsigned> s_asked{0};
std::atomic_flag s_learning;

const PlainOrder* find(LocaleId locale) noexcept {
  const PlainOrder* const last = s_last.load(std::memory_order_acquire);
  if (last && last->locale() == locale) return last;
  const std::size_t learnt = s_learnt.load(std::memory_order_acquire);
  for (std::size_t i = 0; i < learnt; ++i) {
    if (s_orders[i].locale() != locale) continue;
    s_last.store(&s_orders[i], std::memory_order_release);
    return &s_orders[i];
  }
  return nullptr;
}

// A number without a language stands for any locale that has no number of its own: another may be
// behind it the next time.
bool namesOneLocale(LocaleId locale) noexcept { return PRIMARYLANGID(LANGIDFROMLCID(locale)) != 0; }

}  // namespace

const PlainOrder* PlainOrder::learnt(LocaleId locale) noexcept {
  if (const PlainOrder* const known = find(locale)) return known;
  // While one thread learns, the others ask the platform.
  if (!namesOneLocale(locale) || s_learning.test_and_set(std::memory_order_acquire)) return nullptr;
  const std::size_t learnt = s_learnt.load(std::memory_order_relaxed);
  const PlainOrder* order = find(locale);
  if (!order && learnt < kLocales) {
    PlainOrderLearner(locale, learnt + 1, s_orders[learnt]).learn();
    s_learnt.store(learnt + 1, std::memory_order_release);
    order = find(locale);
  }
  s_learning.clear(std::memory_order_release);
  return order;
}

const PlainOrder* PlainOrder::of(LocaleId locale) noexcept {
  if (const PlainOrder* const known = find(locale)) return known;
  return s_asked.fetch_add(1, std::memory_order_relaxed) % kAskedBeforeLearning ==
                 kAskedBeforeLearning - 1
             ? learnt(locale)
             : nullptr;
}

const PlainOrder* PlainOrder::ofUser() noexcept { return of(GetUserDefaultLCID()); }
const PlainOrder* PlainOrder::learntOfUser() noexcept { return learnt(GetUserDefaultLCID()); }

}  // namespace zo
