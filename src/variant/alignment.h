// Which elements of two lists belong together, in order: what an edit of the one into the other
// would keep.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace zo {

// Elements carry a number (a print); those with different numbers are never equal, and equal(i, k)
// decides for the others. After align(), partnerOf()[i] is the element of the second list that the
// i-th of the first belongs to, in ascending order, or kNone.
//
// Equal ends are taken off. Between them the shortest edit is searched (E. Myers, "An O(ND)
// Difference Algorithm and Its Variations", 1986), which keeps as much as is possible, in
// O(n + edits * edits) on average. Where it takes more than kMostEdits, the k-th element with a
// print in one list is a candidate for the k-th with it in the other, the longest ascending run of
// these is kept, and what lies between two that were kept is aligned likewise.
template <class Equal>
class Alignment {
 public:
  static constexpr size_t kNone = static_cast<size_t>(-1);
  static constexpr std::ptrdiff_t kMostEdits = 1000;

  Alignment(std::span<const std::uint64_t> before, std::span<const std::uint64_t> after,
            Equal equal)
      : before_(before), after_(after), equal_(equal), partners_(before.size(), kNone) {}

  void align() {
    gaps_.push_back({0, before_.size(), 0, after_.size()});
    while (!gaps_.empty()) {
      const Gap gap = gaps_.back();
      gaps_.pop_back();
      alignGap(trimmed(gap));
    }
  }
  [[nodiscard]] const std::vector<size_t>& partnerOf() const noexcept { return partners_; }

 private:
  struct Gap {
    size_t before, beforeEnd, after, afterEnd;
  };
  struct Pair {
    size_t before, after;
  };

  bool join(size_t i, size_t k) {
    if (before_[i] != after_[k] || !equal_(i, k)) return false;
    partners_[i] = k;
    return true;
  }
  Gap trimmed(Gap gap) {
    for (; gap.before < gap.beforeEnd && gap.after < gap.afterEnd; ++gap.before, ++gap.after) {
      if (!join(gap.before, gap.after)) break;
    }
    for (; gap.before < gap.beforeEnd && gap.after < gap.afterEnd;
         --gap.beforeEnd, --gap.afterEnd) {
      if (!join(gap.beforeEnd - 1, gap.afterEnd - 1)) break;
    }
    return gap;
  }

  // After d edits: the furthest places in the first list, on the diagonals -d, -d + 2, ... d (place
  // in the first minus place in the second); kOut where a diagonal was left.
  using Row = std::vector<std::ptrdiff_t>;
  static constexpr std::ptrdiff_t kOut = -1;
  struct Step {
    std::ptrdiff_t insertion, removal;  // the place that each edit leads to
  };
  static Step stepTo(const std::vector<Row>& rows, std::ptrdiff_t d, std::ptrdiff_t i) {
    if (d == 0) return {0, kOut};
    const Row& last = rows[static_cast<size_t>(d - 1)];
    return {i < d ? last[static_cast<size_t>(i)] : kOut,
            i > 0 && last[static_cast<size_t>(i - 1)] != kOut ? last[static_cast<size_t>(i - 1)] + 1
                                                              : kOut};
  }

  // By prints alone; what is kept is asked in the end. False when it takes too many edits.
  bool alignByEdits(const Gap& gap) {
    const auto n = static_cast<std::ptrdiff_t>(gap.beforeEnd - gap.before);
    const auto m = static_cast<std::ptrdiff_t>(gap.afterEnd - gap.after);
    std::vector<Row> rows;
    for (std::ptrdiff_t d = 0; d <= kMostEdits; ++d) {
      Row row(static_cast<size_t>(d + 1), kOut);
      for (std::ptrdiff_t i = 0; i <= d; ++i) {
        const std::ptrdiff_t diagonal = 2 * i - d;
        auto [insertion, removal] = stepTo(rows, d, i);
        if (insertion - diagonal > m) insertion = kOut;
        if (removal > n) removal = kOut;
        std::ptrdiff_t x = std::max(insertion, removal);
        if (x == kOut) continue;
        while (x < n && x - diagonal < m &&
               before_[gap.before + static_cast<size_t>(x)] ==
                   after_[gap.after + static_cast<size_t>(x - diagonal)]) {
          ++x;
        }
        row[static_cast<size_t>(i)] = x;
        if (x < n || x - diagonal < m) continue;
        rows.push_back(std::move(row));
        joinAlong(rows, gap, n, m);
        return true;
      }
      rows.push_back(std::move(row));
    }
    return false;
  }
  // The way back from the end, place x in the first and y in the second list.
  void joinAlong(const std::vector<Row>& rows, const Gap& gap, std::ptrdiff_t x, std::ptrdiff_t y) {
    for (auto d = static_cast<std::ptrdiff_t>(rows.size()) - 1; d >= 0; --d) {
      const std::ptrdiff_t diagonal = x - y;
      auto [insertion, removal] = stepTo(rows, d, (diagonal + d) / 2);
      const auto m = static_cast<std::ptrdiff_t>(gap.afterEnd - gap.after);
      const auto n = static_cast<std::ptrdiff_t>(gap.beforeEnd - gap.before);
      if (insertion - diagonal > m) insertion = kOut;
      if (removal > n) removal = kOut;
      while (x > std::max(insertion, removal)) {
        --x, --y;
        join(gap.before + static_cast<size_t>(x), gap.after + static_cast<size_t>(y));
      }
      if (insertion >= removal) {
        --y;
      } else {
        --x;
      }
    }
  }

  void alignGap(Gap gap) {
    if (gap.before == gap.beforeEnd || gap.after == gap.afterEnd || alignByEdits(gap)) return;
    const std::vector<Pair> kept = longestRun(candidates(gap));
    if (kept.empty()) return;
    for (const auto [i, k] : kept) {
      partners_[i] = k;
      gaps_.push_back({gap.before, i, gap.after, k});
      gap.before = i + 1;
      gap.after = k + 1;
    }
    gaps_.push_back(gap);
  }

  // By print, and within one in the order of the list.
  static std::vector<size_t> byPrint(std::span<const std::uint64_t> prints, size_t from,
                                     size_t end) {
    std::vector<size_t> order;
    for (size_t i = from; i < end; ++i) order.push_back(i);
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return prints[a] < prints[b]; });
    return order;
  }
  // In the order of the first list.
  std::vector<Pair> candidates(const Gap& gap) {
    const std::vector<size_t> olds = byPrint(before_, gap.before, gap.beforeEnd);
    const std::vector<size_t> news = byPrint(after_, gap.after, gap.afterEnd);
    std::vector<Pair> pairs;
    auto k = news.begin();
    for (const size_t i : olds) {
      while (k != news.end() && after_[*k] < before_[i]) ++k;
      if (k == news.end()) break;
      if (after_[*k] != before_[i]) continue;
      if (equal_(i, *k)) pairs.push_back({i, *k});
      ++k;
    }
    std::sort(pairs.begin(), pairs.end(),
              [](const Pair& a, const Pair& b) { return a.before < b.before; });
    return pairs;
  }
  // The longest run of pairs that ascends in both lists.
  static std::vector<Pair> longestRun(const std::vector<Pair>& pairs) {
    std::vector<size_t> ends;  // of the best run of each length: the pair that ends it
    std::vector<size_t> previous(pairs.size(), kNone);
    for (size_t p = 0; p < pairs.size(); ++p) {
      const auto place =
          std::lower_bound(ends.begin(), ends.end(), pairs[p].after,
                           [&](size_t end, size_t after) { return pairs[end].after < after; });
      if (place != ends.begin()) previous[p] = *(place - 1);
      if (place == ends.end()) {
        ends.push_back(p);
      } else {
        *place = p;
      }
    }
    std::vector<Pair> run(ends.size());
    size_t p = ends.empty() ? kNone : ends.back();
    for (auto to = run.rbegin(); to != run.rend(); ++to, p = previous[p]) *to = pairs[p];
    return run;
  }

  std::span<const std::uint64_t> before_;
  std::span<const std::uint64_t> after_;
  Equal equal_;
  std::vector<size_t> partners_;
  std::vector<Gap> gaps_;
};

}  // namespace zo
