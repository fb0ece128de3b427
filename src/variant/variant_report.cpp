#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/variant/variant_report.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <ranges>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>

#include "variant/alignment.h"
#include "variant/outline.h"

namespace {

using Change = ZoVariantChange;
using Node = zo::OutlineNode;
using zo::Outline;

class Comparison {
 public:
  Comparison(const ZoVariant& before, const ZoVariant& after, const ZoVariantReportOptions& options,
             std::vector<Change>& changes)
      : options_(options), before_(before), after_(after), changes_(changes) {
    zo::NumberRanks ranks(std::max(options.tol.getPntTol(), options.tol.getVecTol()));
    before_.addNumbers(ranks);
    after_.addNumbers(ranks);
    ranks.rank();
    before_.print(ranks, options);
    after_.print(ranks, options);
  }
  void run() { compare(before_.root(), after_.root(), ZoVariant::kMaxDepth); }

 private:
  using Nodes = std::span<const Node>;

  static constexpr size_t kNone = static_cast<size_t>(-1);

  // ---- What counts as the same ----
  [[nodiscard]] bool sameHead(const ZoVariant& a, const ZoVariant& b) const noexcept {
    if (options_.codes && (a.code() != b.code() || a.type() != b.type())) return false;
    return !options_.flags || a.flags() == b.flags();
  }
  static bool areContainers(const ZoVariant& a, const ZoVariant& b) noexcept {
    return a.type() == b.type() && (a.asDict() || a.asSequence());
  }
  // Codes and flags of all that lies below count like those of the values themselves. A pair of
  // nodes is looked at once for each pair of those that hold them.
  [[nodiscard]] bool isSame(const Node& a, const Node& b, unsigned int depthLeft) const {
    if (a.print != b.print || !sameHead(*a.value, *b.value)) return false;
    if (!areContainers(*a.value, *b.value)) return a.value->isEqualTo(*b.value, options_.tol);
    if (a.count != b.count) return false;
    if (depthLeft == 0) return *a.value == *b.value;
    if (a.value->asDict()) return sameEntries(a, b, depthLeft - 1);
    const Nodes x = before_.elementsOf(a);
    const Nodes y = after_.elementsOf(b);
    if (options_.anyOrder) return matched(x, y, depthLeft - 1).first.empty();
    return std::equal(x.begin(), x.end(), y.begin(),
                      [&](const Node& p, const Node& q) { return isSame(p, q, depthLeft - 1); });
  }
  [[nodiscard]] bool sameEntries(const Node& a, const Node& b, unsigned int depthLeft) const {
    const Nodes entries = before_.elementsOf(a);
    return std::all_of(entries.begin(), entries.end(), [&](const Node& entry) {
      const Node* const other = after_.at(b, *entry.key);
      return other && isSame(entry, *other, depthLeft);
    });
  }

  // ---- Walking ----
  void compare(const Node& before, const Node& after, unsigned int depthLeft) {
    if (!areContainers(*before.value, *after.value) || depthLeft == 0) {
      if (!isSame(before, after, 0)) add(Change::kChanged, *before.value, *after.value);
      return;
    }
    if (!sameHead(*before.value, *after.value))
      add(Change::kChanged, headOf(*before.value), headOf(*after.value));
    if (before.value->asDict()) {
      compareDicts(before, after, depthLeft - 1);
    } else if (options_.anyOrder) {
      compareAnyOrder(before_.elementsOf(before), after_.elementsOf(after), depthLeft - 1);
    } else {
      compareInOrder(before_.elementsOf(before), after_.elementsOf(after), depthLeft - 1);
    }
  }

  // What differs, in the order of the keys as the first dictionary spells them.
  void compareDicts(const Node& before, const Node& after, unsigned int depthLeft) {
    struct Entry {
      const ZoString* key;
      const Node *before, *after;
    };
    std::vector<Entry> entries;
    for (const Node& old : before_.elementsOf(before)) {
      const Node* const now = after_.at(after, *old.key);
      if (!now || !isSame(old, *now, depthLeft)) entries.push_back({old.key, &old, now});
    }
    for (const Node& now : after_.elementsOf(after)) {
      if (!before.value->asDict()->contains(*now.key)) entries.push_back({now.key, nullptr, &now});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return *a.key < *b.key; });
    for (const Entry& entry : entries) {
      const ZoString step = ZoVariant::pathStep(entry.key->view());
      compareAt(step.view(), entry.before, step.view(), entry.after, depthLeft);
    }
  }

  struct Range {
    size_t first, end;
  };
  // Aligns two ranges by their prints: `kept` is shown what belongs together, `gap` what lies
  // between.
  template <class PrintOf, class Equal, class Kept, class Gap>
  static void walkAligned(Nodes before, Range olds, Nodes after, Range news, PrintOf printOf,
                          Equal equal, Kept kept, Gap gap) {
    std::vector<std::uint64_t> prints[2];
    for (size_t i = olds.first; i < olds.end; ++i) prints[0].push_back(printOf(before[i]));
    for (size_t k = news.first; k < news.end; ++k) prints[1].push_back(printOf(after[k]));
    zo::Alignment alignment(prints[0], prints[1], [&](size_t i, size_t k) {
      return equal(before[olds.first + i], after[news.first + k]);
    });
    alignment.align();
    size_t k = news.first;
    size_t i = olds.first;
    for (size_t at = i; at < olds.end; ++at) {
      const size_t partner = alignment.partnerOf()[at - olds.first];
      if (partner == kNone) continue;
      gap(Range{i, at}, Range{k, news.first + partner});
      i = at + 1;
      k = news.first + partner + 1;
      kept(at, k - 1);
    }
    gap(Range{i, olds.end}, Range{k, news.end});
  }

  // First what is equal; between that, what is of one kind was changed.
  void compareInOrder(Nodes before, Nodes after, unsigned int depthLeft) {
    const auto changed = [&](size_t i, size_t k) {
      compareAt(i, &before[i], k, &after[k], depthLeft);
    };
    const auto byPlace = [&](Range olds, Range news) {
      auto [i, end] = olds;
      auto [k, newEnd] = news;
      for (; i < end && k < newEnd; ++i, ++k) changed(i, k);
      for (; i < end; ++i) compareAt(i, &before[i], 0, nullptr, depthLeft);
      for (; k < newEnd; ++k) compareAt(0, nullptr, k, &after[k], depthLeft);
    };
    const auto byKind = [&](Range olds, Range news) {
      walkAligned(
          before, olds, after, news, [](const Node& node) { return node.value->type(); },
          [](const Node&, const Node&) { return true; }, changed, byPlace);
    };
    walkAligned(
        before, {0, before.size()}, after, {0, after.size()},
        [](const Node& node) { return node.print; },
        [&](const Node& old, const Node& now) { return isSame(old, now, depthLeft); },
        [](size_t, size_t) {}, byKind);
  }

  void compareAnyOrder(Nodes before, Nodes after, unsigned int depthLeft) {
    const auto [removed, added] = matched(before, after, depthLeft);
    for (const size_t i : removed) compareAt(i, &before[i], 0, nullptr, depthLeft);
    for (const size_t k : added) compareAt(0, nullptr, k, &after[k], depthLeft);
  }

  // The positions on both sides that have no equal partner on the other. Partners in the same place
  // first.
  [[nodiscard]] std::pair<std::vector<size_t>, std::vector<size_t>> matched(
      Nodes before, Nodes after, unsigned int depthLeft) const {
    std::vector<size_t> left;
    std::vector<size_t> open;
    for (size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
      if (i < before.size() && i < after.size() && isSame(before[i], after[i], depthLeft)) continue;
      if (i < before.size()) left.push_back(i);
      if (i < after.size()) open.push_back(i);
    }
    std::unordered_map<std::uint64_t, std::vector<size_t>> candidates;  // the next one last
    for (const size_t k : open | std::views::reverse) candidates[after[k].print].push_back(k);
    std::erase_if(left, [&](size_t i) {
      const auto group = candidates.find(before[i].print);
      if (group == candidates.end()) return false;
      auto& places = group->second;
      const auto partner = std::find_if(places.rbegin(), places.rend(), [&](size_t k) {
        return i != k && isSame(before[i], after[k], depthLeft);  // i == k was looked at above
      });
      if (partner == places.rend()) return false;
      places.erase(std::next(partner).base());
      return true;
    });
    std::vector<size_t> added;
    for (const auto& [print, places] : candidates)
      added.insert(added.end(), places.begin(), places.end());
    std::sort(added.begin(), added.end());
    return {std::move(left), std::move(added)};
  }

  // ---- Paths and changes ----
  // Adds a step to a path for as long as it lives.
  class PathScope {
   public:
    PathScope(std::wstring& path, std::wstring_view step) : path_(path), length_(path.size()) {
      path_ += L'/';
      path_ += step;
    }
    ~PathScope() { path_.resize(length_); }
    PathScope(const PathScope&) = delete;
    PathScope& operator=(const PathScope&) = delete;

   private:
    std::wstring& path_;
    size_t length_;
  };

  // Null stands for what is not there.
  void compareAt(size_t oldPosition, const Node* before, size_t newPosition, const Node* after,
                 unsigned int depthLeft) {
    const ZoString oldStep = ZoIntToStr(static_cast<std::int64_t>(oldPosition));
    const ZoString newStep = ZoIntToStr(static_cast<std::int64_t>(newPosition));
    compareAt(oldStep.view(), before, newStep.view(), after, depthLeft);
  }
  void compareAt(std::wstring_view oldStep, const Node* before, std::wstring_view newStep,
                 const Node* after, unsigned int depthLeft) {
    const PathScope oldScope(oldPath_, oldStep);
    const PathScope newScope(newPath_, newStep);
    if (before && after) {
      compare(*before, *after, depthLeft);
    } else if (before) {
      add(Change::kRemoved, *before->value, ZoVariant());
    } else {
      add(Change::kAdded, ZoVariant(), *after->value);
    }
  }
  void add(Change::Kind kind, const ZoVariant& before, const ZoVariant& after) {
    std::wstring_view path = kind == Change::kAdded ? newPath_ : oldPath_;
    if (!path.empty()) path.remove_prefix(1);
    changes_.push_back({kind, ZoString(path), before, after});
  }
  static ZoVariant headOf(const ZoVariant& container) {
    ZoVariant head(container.type(), container.code(), container.flags());
    return head;
  }

  const ZoVariantReportOptions& options_;
  Outline before_;
  Outline after_;
  std::vector<Change>& changes_;
  std::wstring oldPath_;  // a '/' in front of every step
  std::wstring newPath_;
};

constexpr const wchar_t* kWords[] = {L"", L"Added", L"Removed", L"Changed"};
constexpr wchar_t kMarks[] = L" +-*";

}  // namespace

ZoVariantReport::ZoVariantReport(const ZoVariant& before, const ZoVariant& after,
                                 const ZoVariantReportOptions& options) {
  Comparison(before, after, options, changes_).run();
}

unsigned int ZoVariantReport::count(ZoVariantChange::Kind kind) const noexcept {
  return static_cast<unsigned int>(
      std::count_if(changes_.begin(), changes_.end(),
                    [kind](const ZoVariantChange& change) { return change.kind == kind; }));
}

ZoVariant ZoVariantReport::asVariant() const {
  ZoArray<ZoVariant> list;
  for (const ZoVariantChange& change : changes_) {
    ZoHashDict<ZoVariant, ZoString> entry(8);
    const auto put = [&](const wchar_t* key, ZoVariant value) {
      if (entry.insertAt(key, std::move(value)) != ZoResult::ok) throw std::bad_alloc();
    };
    put(L"Change", kWords[change.kind]);
    put(L"Path", change.path);
    if (change.kind != ZoVariantChange::kAdded) put(L"Before", change.before);
    if (change.kind != ZoVariantChange::kRemoved) put(L"After", change.after);
    if (list.append(ZoVariant(std::move(entry))) != ZoResult::ok) throw std::bad_alloc();
  }
  return ZoVariant(std::move(list));
}

ZoString ZoVariantReport::asText() const {
  std::wstring text;
  const auto write = [&](const ZoVariant& value) {
    ZoString form;
    const bool isTooDeep = value.format(form) != ZoResult::ok;
    text += isTooDeep ? (value.printType() + L" ...").view() : form.view();
  };
  for (const ZoVariantChange& change : changes_) {
    text += kMarks[change.kind];
    text += L' ';
    text += change.path.view();
    text += L": ";
    if (change.kind != ZoVariantChange::kAdded) write(change.before);
    if (change.kind == ZoVariantChange::kChanged) text += L" -> ";
    if (change.kind != ZoVariantChange::kRemoved) write(change.after);
    text += L'\n';
  }
  return ZoString(std::wstring_view(text));
}

std::wostream& operator<<(std::wostream& out, const ZoVariantReport& report) {
  return out << report.asText();
}
