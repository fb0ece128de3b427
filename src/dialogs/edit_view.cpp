// What a user sees of a variant that is edited: elements in order, and those that are searched for.
#include <zo/dialogs/variant_edits.h>

#include <algorithm>
#include <ranges>
#include <string>

#include "dialogs/edit_paths.h"

namespace {

using Element = ZoVariantEdits::Element;

// Hidden ones are left out.
std::vector<Element> elementsOf(const ZoString& path, const ZoVariant& container) {
  std::vector<Element> elements;
  elements.reserve(container.entries());
  for (const auto [key, position, value] : container.elements()) {
    if (value.isFlagged(ZoFlagInvisible)) continue;
    if (key)
      elements.push_back({zo::pathOf(path, *key), *key, &value});
    else
      elements.push_back({zo::pathOf(path, position),
                          ZoString((L"[" + std::to_wstring(position) + L"]").c_str()), &value});
  }
  if (container.asDict())
    std::ranges::sort(elements, {}, [](const Element& e) { return e.name.view(); });
  return elements;
}

bool isMatch(const Element& element, const ZoVariant& outer, const ZoRegExp& expression,
             ZoVariantEdits::Where where) {
  if ((where & ZoVariantEdits::kInNames) && outer.asDict() && element.name.contains(expression))
    return true;
  return (where & ZoVariantEdits::kInValues) && element.value->entries() == 0 &&
         ZoVariantEdits::textOf(*element.value).contains(expression);
}

}  // namespace

std::vector<Element> ZoVariantEdits::elements(zo::TextParameter path) const {
  const ZoVariant* const container = value_.find(path);
  return container ? elementsOf(ZoString(path), *container) : std::vector<Element>();
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
    std::vector<Element> inside = elementsOf(path, container);
    for (Element& element : std::views::reverse(inside))
      ahead.push_back({std::move(element), &container});
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
