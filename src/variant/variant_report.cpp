#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/variant/variant_report.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>

namespace {

using Change = ZoVariantChange;

class Comparison {
 public:
  Comparison(const ZoVariantReportOptions& options, std::vector<Change>& changes)
      : options_(options), changes_(changes) {}

  void compare(const ZoVariant& before, const ZoVariant& after, unsigned int depthLeft) {
    const bool sameContainers =
        before.type() == after.type() && depthLeft > 0 && (before.asDict() || before.asSequence());
    if (!sameContainers) {
      if (!isSame(before, after)) add(Change::kChanged, before, after);
      return;
    }
    if (!sameHead(before, after)) add(Change::kChanged, headOf(before), headOf(after));
    if (before.asDict()) {
      compareDicts(*before.asDict(), *after.asDict(), depthLeft - 1);
    } else if (options_.anyOrder) {
      compareAnyOrder(elementsOf(before), elementsOf(after));
    } else {
      compareInOrder(elementsOf(before), elementsOf(after), depthLeft - 1);
    }
  }

 private:
  using Elements = std::vector<const ZoVariant*>;

  // ---- What counts as the same ----
  [[nodiscard]] bool sameHead(const ZoVariant& a, const ZoVariant& b) const noexcept {
    if (options_.codes && (a.code() != b.code() || a.type() != b.type())) return false;
    return !options_.flags || a.flags() == b.flags();
  }
  // Codes and flags of all that lies below count like those of the values themselves.
  [[nodiscard]] bool isSame(const ZoVariant& a, const ZoVariant& b) const {
    if (!sameHead(a, b)) return false;
    if (a.asDict() && b.asDict()) return sameDicts(*a.asDict(), *b.asDict());
    if (!a.asSequence() || !b.asSequence()) return a.isEqualTo(b, options_.tol);
    if (a.entries() != b.entries()) return false;
    const Elements x = elementsOf(a);
    const Elements y = elementsOf(b);
    if (options_.anyOrder) return matched(x, y).first.empty();
    return std::equal(x.begin(), x.end(), y.begin(),
                      [&](const ZoVariant* p, const ZoVariant* q) { return isSame(*p, *q); });
  }
  [[nodiscard]] bool sameDicts(const ZoVariant::Dict& a, const ZoVariant::Dict& b) const {
    if (a.entries() != b.entries()) return false;
    for (const auto [key, value] : a) {
      const ZoVariant* const other = b.at(key);
      if (!other || !isSame(value, *other)) return false;
    }
    return true;
  }

  // ---- Walking ----
  void compareDicts(const ZoVariant::Dict& before, const ZoVariant::Dict& after,
                    unsigned int depthLeft) {
    for (const ZoString& key : keysOf(before, after)) {
      const ZoVariant* const old = before.at(key);
      const ZoVariant* const now = after.at(key);
      const PathScope scope(path_, ZoVariant::pathStep(key.view()).view());
      compareOrAdd(old, now, depthLeft);
    }
  }

  // The keys of both, each once and as the first dictionary spells it.
  static std::vector<ZoString> keysOf(const ZoVariant::Dict& a, const ZoVariant::Dict& b) {
    std::vector<ZoString> keys;
    for (const auto [key, value] : a) keys.push_back(key);
    for (const auto [key, value] : b) {
      if (!a.contains(key)) keys.push_back(key);
    }
    std::sort(keys.begin(), keys.end());
    return keys;
  }

  void compareInOrder(const Elements& before, const Elements& after, unsigned int depthLeft) {
    size_t front = 0;
    size_t back = 0;
    const size_t shorter = std::min(before.size(), after.size());
    while (front < shorter && isSame(*before[front], *after[front])) ++front;
    while (front + back < shorter &&
           isSame(*before[before.size() - 1 - back], *after[after.size() - 1 - back]))
      ++back;
    const size_t oldEnd = before.size() - back;
    const size_t newEnd = after.size() - back;
    const size_t both = std::min(oldEnd, newEnd);
    for (size_t i = front; i < both; ++i) at(i, before[i], after[i], depthLeft);
    for (size_t i = both; i < oldEnd; ++i) at(i, before[i], nullptr, depthLeft);
    for (size_t i = both; i < newEnd; ++i) at(i, nullptr, after[i], depthLeft);
  }

  void compareAnyOrder(const Elements& before, const Elements& after) {
    const auto [removed, added] = matched(before, after);
    for (const size_t i : removed) at(i, before[i], nullptr, 0);
    for (const size_t i : added) at(i, nullptr, after[i], 0);
  }

  // The positions on both sides that have no equal partner on the other.
  [[nodiscard]] std::pair<std::vector<size_t>, std::vector<size_t>> matched(
      const Elements& before, const Elements& after) const {
    std::vector<size_t> left;
    std::vector<size_t> candidates;
    for (size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
      if (i < before.size() && i < after.size() && isSame(*before[i], *after[i])) continue;
      if (i < before.size()) left.push_back(i);
      if (i < after.size()) candidates.push_back(i);
    }
    std::erase_if(left, [&](size_t i) {
      const auto partner = std::find_if(candidates.begin(), candidates.end(),
                                        [&](size_t k) { return isSame(*before[i], *after[k]); });
      if (partner == candidates.end()) return false;
      candidates.erase(partner);
      return true;
    });
    return {std::move(left), std::move(candidates)};
  }

  static Elements elementsOf(const ZoVariant& sequence) {
    Elements elements;
    elements.reserve(sequence.entries());
    for (const ZoVariant& element : *sequence.asSequence()) elements.push_back(&element);
    return elements;
  }

  // ---- Paths and changes ----
  // Adds a step to the path for as long as it lives.
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

  void at(size_t position, const ZoVariant* before, const ZoVariant* after,
          unsigned int depthLeft) {
    wchar_t step[ZoNumberTextSize];
    const unsigned int length = ZoIntToStr(static_cast<std::int64_t>(position), step);
    const PathScope scope(path_, std::wstring_view(step, length));
    compareOrAdd(before, after, depthLeft);
  }
  void compareOrAdd(const ZoVariant* before, const ZoVariant* after, unsigned int depthLeft) {
    if (before && after) {
      compare(*before, *after, depthLeft);
    } else if (before) {
      add(Change::kRemoved, *before, ZoVariant());
    } else {
      add(Change::kAdded, ZoVariant(), *after);
    }
  }
  void add(Change::Kind kind, const ZoVariant& before, const ZoVariant& after) {
    std::wstring_view path = path_;
    if (!path.empty()) path.remove_prefix(1);
    changes_.push_back({kind, ZoString(path), before, after});
  }
  static ZoVariant headOf(const ZoVariant& container) {
    ZoVariant head(container.type(), container.code(), container.flags());
    return head;
  }

  const ZoVariantReportOptions& options_;
  std::vector<Change>& changes_;
  std::wstring path_;  // a '/' in front of every step
};

constexpr const wchar_t* kWords[] = {L"", L"Added", L"Removed", L"Changed"};
constexpr wchar_t kMarks[] = L" +-*";

}  // namespace

ZoVariantReport::ZoVariantReport(const ZoVariant& before, const ZoVariant& after,
                                 const ZoVariantReportOptions& options) {
  Comparison(options, changes_).compare(before, after, ZoVariant::kMaxDepth);
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
  for (const ZoVariantChange& change : changes_) {
    text += kMarks[change.kind];
    text += L' ';
    text += change.path.view();
    text += L": ";
    if (change.kind != ZoVariantChange::kAdded) text += change.before.format().view();
    if (change.kind == ZoVariantChange::kChanged) text += L" -> ";
    if (change.kind != ZoVariantChange::kRemoved) text += change.after.format().view();
    text += L'\n';
  }
  return ZoString(std::wstring_view(text));
}

std::wostream& operator<<(std::wostream& out, const ZoVariantReport& report) {
  return out << report.asText();
}
