// A tree of variants laid out in one table, with a print for every value: values whose prints
// differ are not the same to a report. Those with one print nearly always are, but must be asked.
#pragma once

#include <zo/variant/variant_report.h>

#include <cstdint>
#include <span>
#include <vector>

namespace zo {

// Numbers that may pass for each other have the same rank: those that are within the tolerance, or
// joined by others that are.
class NumberRanks {
 public:
  explicit NumberRanks(double tolerance) noexcept : tolerance_(tolerance) {}
  void add(double number) { starts_.push_back(number); }
  void rank();  // after the last add
  [[nodiscard]] std::uint64_t of(double number) const noexcept;

 private:
  double tolerance_;
  std::vector<double> starts_;  // of the ranks, ascending
};

struct OutlineNode {
  const ZoVariant* value;
  const ZoString* key;  // null unless it is an entry of a dictionary
  std::uint64_t print;
  size_t first, count;  // its elements; those of a dictionary by their addresses
};

// The tree must stay as it is. No level of it takes any stack.
class Outline {
 public:
  explicit Outline(const ZoVariant& root);

  void addNumbers(NumberRanks& ranks) const;
  void print(const NumberRanks& ranks, const ZoVariantReportOptions& options);

  [[nodiscard]] const OutlineNode& root() const noexcept { return nodes_.front(); }
  [[nodiscard]] std::span<const OutlineNode> elementsOf(const OutlineNode& node) const noexcept {
    return std::span(nodes_).subspan(node.first, node.count);
  }
  // The entry of a dictionary with a key, or null.
  [[nodiscard]] const OutlineNode* at(const OutlineNode& dict, const ZoString& key) const;

 private:
  void addElements(size_t index);

  std::vector<OutlineNode> nodes_;  // level by level, elements of one container side by side
};

}  // namespace zo
