// The elements of a container that a user sees, in the order in which he does: dictionaries by the
// code units of their keys, what is "Invisible in Browser" left out. Their paths and names are made
// only for those that are looked at.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/edit_paths.h"

namespace zo {

// Valid until the container changes.
struct SeenElement {
  std::wstring_view key;  // empty in a sequence
  const ZoVariant* value;
  unsigned int position;
  bool isNamed;

  [[nodiscard]] ZoString path(const ZoString& outer) const {
    return isNamed ? pathOf(outer, key, true) : pathOf(outer, position);
  }
  [[nodiscard]] ZoString name() const {
    if (isNamed) return ZoString(key);
    return ZoString(L'[' + std::to_wstring(position) + L']');
  }
};

// Those of which isWanted(SeenElement) says so.
template <class Wanted>
[[nodiscard]] std::vector<SeenElement> seenElements(const ZoVariant& container, Wanted isWanted) {
  std::vector<SeenElement> seen;
  seen.reserve(container.entries());
  for (const auto [key, position, value] : container.elements()) {
    const SeenElement element{key ? key->view() : std::wstring_view(), &value, position,
                              key != nullptr};
    if (!value.isFlagged(ZoFlagInvisible) && isWanted(element)) seen.push_back(element);
  }
  if (container.asDict()) std::ranges::sort(seen, {}, &SeenElement::key);
  return seen;
}
[[nodiscard]] inline std::vector<SeenElement> seenElements(const ZoVariant& container) {
  return seenElements(container, [](const SeenElement&) { return true; });
}

}  // namespace zo
