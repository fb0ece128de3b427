#include "variant/outline.h"

#include <zo/text/containers/text_keys.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <ranges>
#include <string_view>

namespace zo {
namespace {

constexpr std::uint64_t mixed(std::uint64_t word) noexcept {
  word = (word ^ word >> 30) * 0xBF58476D1CE4E5B9;
  word = (word ^ word >> 27) * 0x94D049BB133111EB;
  return word ^ word >> 31;
}
constexpr std::uint64_t joined(std::uint64_t print, std::uint64_t word) noexcept {
  return mixed(std::rotl(print, 5) ^ mixed(word + 0x9E3779B97F4A7C15));
}

// Shows the numbers of which a value consists, if it is one that has a tolerance.
template <class Visit>
void forNumbers(const ZoVariant& value, Visit visit) {
  if (value.isNumber()) {
    visit(value.asReal());
  } else if (value.isTypeOf(ZoVariant::kPoint) || value.isTypeOf(ZoVariant::kVector)) {
    const ZoPoint point = value.asPoint();
    for (const double number : {point.x, point.y, point.z}) visit(number);
  }
}

// Codes and flags, as far as they count.
std::uint64_t printOfHead(const ZoVariant& value, const ZoVariantReportOptions& options) noexcept {
  const unsigned int kind = value.isNumber() && !options.codes ? ZoVariant::kReal : value.type();
  std::uint64_t print = joined(0, kind);
  if (options.codes) print = joined(print, static_cast<unsigned int>(value.code()));
  return options.flags ? joined(print, value.flags()) : print;
}

std::uint64_t printOfLeaf(const ZoVariant& value, const NumberRanks& ranks, std::uint64_t print) {
  forNumbers(value, [&](double number) { print = joined(print, ranks.of(number)); });
  if (value.isTypeOf(ZoVariant::kString)) {
    print = joined(print, std::hash<std::wstring_view>()(value.asString().view()));
  } else if (value.isTypeOf(ZoVariant::kPointer)) {
    print = joined(print, reinterpret_cast<std::uintptr_t>(value.asPointer()));
  } else if (value.isTypeOf(ZoVariant::kGuid)) {
    std::uint64_t words[2];
    const _GUID guid = value.asGuid();
    std::memcpy(words, &guid, sizeof words);
    print = joined(joined(print, words[0]), words[1]);
  }
  return print;
}

}  // namespace

// ---- Numbers ----

void NumberRanks::rank() {
  std::erase_if(starts_, [](double number) { return std::isnan(number); });
  std::sort(starts_.begin(), starts_.end());
  // More than the tolerance: distances and differences of large integers are rounded.
  constexpr double kSlack = 1e-9;
  double previous = 0;
  bool isFirst = true;
  std::erase_if(starts_, [&](double number) {
    const double gap = number == previous ? 0 : number - previous;
    const double reach = tolerance_ * (1 + kSlack) + std::abs(number) * 1e-15 + 1e-150;
    const bool joins = !isFirst && gap <= reach;
    isFirst = false;
    previous = number;
    return joins;
  });
}

std::uint64_t NumberRanks::of(double number) const noexcept {
  if (std::isnan(number)) return 0;
  return static_cast<std::uint64_t>(std::upper_bound(starts_.begin(), starts_.end(), number) -
                                    starts_.begin());
}

// ---- The table ----

Outline::Outline(const ZoVariant& root) {
  nodes_.push_back({&root, nullptr, 0, 0, 0});
  for (size_t i = 0; i < nodes_.size(); ++i) addElements(i);
}

void Outline::addElements(size_t index) {
  const size_t first = nodes_.size();
  for (const auto& [key, position, value] : nodes_[index].value->elements())
    nodes_.push_back({&value, key, 0, 0, 0});
  nodes_[index].first = first;
  nodes_[index].count = nodes_.size() - first;
  if (!nodes_[index].value->asDict()) return;
  std::sort(
      nodes_.begin() + static_cast<std::ptrdiff_t>(first), nodes_.end(),
      [](const OutlineNode& a, const OutlineNode& b) { return std::less<>()(a.value, b.value); });
}

const OutlineNode* Outline::at(const OutlineNode& dict, const ZoString& key) const {
  const ZoVariant* const value = dict.value->asDict()->at(key);
  if (!value) return nullptr;
  const auto entries = elementsOf(dict);
  return &*std::lower_bound(entries.begin(), entries.end(), value,
                            [](const OutlineNode& node, const ZoVariant* wanted) {
                              return std::less<>()(node.value, wanted);
                            });
}

void Outline::addNumbers(NumberRanks& ranks) const {
  for (const OutlineNode& node : nodes_)
    forNumbers(*node.value, [&](double number) { ranks.add(number); });
}

void Outline::print(const NumberRanks& ranks, const ZoVariantReportOptions& options) {
  // From the end, so that elements come before what holds them.
  for (OutlineNode& node : std::views::reverse(nodes_)) {
    const bool isOrdered = node.value->asSequence() && !options.anyOrder;
    std::uint64_t sum = node.count;  // in any order
    for (const OutlineNode& element : elementsOf(node)) {
      const std::uint64_t key =
          element.key ? hashText(element.key->data(), element.key->length()).hash() : 0;
      const std::uint64_t print = joined(element.print, key);
      sum = isOrdered ? joined(sum, print) : sum + print;
    }
    node.print = joined(printOfLeaf(*node.value, ranks, printOfHead(*node.value, options)), sum);
  }
}

}  // namespace zo
