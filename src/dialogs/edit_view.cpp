// What a user sees of a variant that is edited: elements in order, and those that are searched for.
#include <zo/dialogs/variant_edits.h>

#include <ranges>

#include "dialogs/edit_elements.h"

namespace {

using Element = ZoVariantEdits::Element;

bool isMatch(const Element& element, const ZoVariant& outer, const ZoRegExp& expression,
             ZoVariantEdits::Where where) {
  if ((where & ZoVariantEdits::kInNames) && outer.asDict() && element.name.contains(expression))
    return true;
  return (where & ZoVariantEdits::kInValues) && element.value->entries() == 0 &&
         ZoVariantEdits::textOf(*element.value).contains(expression);
}

}  // namespace

std::vector<Element> ZoVariantEdits::elements(zo::TextParameter path) const& {
  std::vector<Element> elements;
  const ZoVariant* const container = value_.find(path);
  if (!container) return elements;
  const ZoString outer(path);
  elements.reserve(container->entries());
  for (const zo::SeenElement& seen : zo::seenElements(*container))
    elements.push_back({seen.path(outer), seen.name(), seen.value});
  return elements;
}

// Down without recursion: nothing bounds a variant's depth.
std::vector<ZoString> ZoVariantEdits::find(const ZoRegExp& expression, Where where,
                                           zo::NotNegative<unsigned int> most) const {
  struct Seen {
    Element element;
    const ZoVariant* outer;
  };
  std::vector<ZoString> found;
  std::vector<Seen> ahead;  // the next one last
  const auto enter = [&](const ZoString& path, const ZoVariant& container) {
    const std::vector<zo::SeenElement> inside = zo::seenElements(container);
    for (const zo::SeenElement& seen : std::views::reverse(inside))
      ahead.push_back({{seen.path(path), seen.name(), seen.value}, &container});
  };
  enter(ZoString(), value_);
  while (!ahead.empty() && found.size() < most) {
    const Seen next = std::move(ahead.back());
    ahead.pop_back();
    if (isMatch(next.element, *next.outer, expression, where)) found.push_back(next.element.path);
    enter(next.element.path, *next.element.value);
  }
  return found;
}
