// What differs between two trees of variants: a list of changes, each with the path to it.
//
// The trees are walked side by side. Entries of dictionaries belong together by key. Elements of
// sequences are aligned as lines of an edited text are: equal ones belong together in their order;
// between these, elements of one kind were changed, and the rest was changed place by place and
// then removed or added. So one element inserted is one addition wherever it stands. With anyOrder,
// equal elements belong together wherever they stand, and what is left over was removed or added.
//
// Changes come in the order of the walk: dictionaries by the code units of their keys, sequences
// from front to back; with anyOrder first the removed elements, then the added ones.
//
// Errors:  nothing throws but std::bad_alloc. Containers more than ZoVariant::kMaxDepth deep are
//          compared as a whole, and with `==`.
// Threads: as the variants.
// Cost:    O(n log n) in the trees' sizes for trees with few differences; at worst quadratic in the
//          elements of one sequence: with many differences in order, and with numbers within the
//          tolerance of each other in any order.
// Text:    docs/variant.md, "Report".
#pragma once

#include <zo/config.h>
#include <zo/geometry/tol.h>
#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <iosfwd>
#include <utility>
#include <vector>

struct ZoVariantChange {
  enum Kind : int { kAdded = 1, kRemoved = 2, kChanged = 3 };

  Kind kind = kChanged;
  // As ZoVariant::find takes it: in the new tree for what was added, else in the old one. Empty for
  // the trees themselves, and for an entry of theirs whose key is empty, to which no path leads.
  ZoString path;
  // Empty where there is none. Containers that differ only in code or flags stand here without
  // their elements.
  ZoVariant before;
  ZoVariant after;

  friend bool operator==(const ZoVariantChange&, const ZoVariantChange&) = default;
};

struct ZoVariantReportOptions {
  ZoTol tol = ZoTol::s_default;  // as in ZoVariant::isEqualTo
  bool anyOrder = false;         // the order of sequences does not count
  bool codes = true;             // another type code, or another kind of number, is a change
  bool flags = true;             // other flags are a change
};

class ZO_COM_API ZoVariantReport {
 public:
  ZoVariantReport() = default;
  ZoVariantReport(const ZoVariant& before, const ZoVariant& after,
                  const ZoVariantReportOptions& options = {});

  [[nodiscard]] const std::vector<ZoVariantChange>& changes() const& noexcept { return changes_; }
  [[nodiscard]] std::vector<ZoVariantChange> changes() && noexcept { return std::move(changes_); }
  [[nodiscard]] bool isEmpty() const noexcept { return changes_.empty(); }
  [[nodiscard]] unsigned int count(ZoVariantChange::Kind kind) const noexcept;

  // A sequence with a dictionary for each change: "Change" ("Added", "Removed" or "Changed"),
  // "Path", and "Before" and "After" where there is one. It is two levels deeper than these.
  [[nodiscard]] ZoVariant asVariant() const;
  // A line for each change, '+', '-' or '*' in front of the path; the values follow in their text
  // forms, over several lines where they take several; the type and "..." stand for those that are
  // too deep for one. No changes give an empty text.
  [[nodiscard]] ZoString asText() const;

 private:
  std::vector<ZoVariantChange> changes_;
};

// The text.
ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoVariantReport& report);
