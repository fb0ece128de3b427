#include "dialogs/editor_differences.h"

#include "dialogs/edit_paths.h"

namespace {

// The paths that lead to a path, from the nearest one up to the whole value.
template <class Visit>
void walkUp(std::wstring_view path, Visit visit) {
  while (!path.empty()) {
    path = zo::outerOf(path);
    if (!visit(path)) return;
  }
}

}  // namespace

// The edited one is the report's older one: so all paths but those of what is missing are its own.
zo::EditorDifferences::EditorDifferences(const ZoVariant& edited, const ZoVariant& other)
    : report_(edited, other) {
  for (const ZoVariantChange& change : report_.changes()) {
    const std::wstring_view path = change.path.view();
    if (change.kind == ZoVariantChange::kAdded)
      missing_[std::wstring(outerOf(path))].push_back(&change);
    else
      changes_.emplace(path, &change);
    walkUp(path, [&](std::wstring_view outer) { return ways_.emplace(outer).second; });
  }
}

bool zo::EditorDifferences::isShown(const ZoString& path) const {
  const std::wstring_view own = path.view();
  if (ways_.contains(own) || changes_.contains(std::wstring(own))) return true;
  bool isInside = false;
  walkUp(own, [&](std::wstring_view outer) {
    const auto found = changes_.find(std::wstring(outer));
    isInside = found != changes_.end() && found->second->kind == ZoVariantChange::kRemoved;
    return !isInside;
  });
  return isInside;
}

const ZoVariant* zo::EditorDifferences::other(const ZoString& path) const {
  const auto found = changes_.find(std::wstring(path.view()));
  const bool isThere = found != changes_.end() && found->second->kind == ZoVariantChange::kChanged;
  return isThere ? &found->second->after : nullptr;
}

const std::vector<const ZoVariantChange*>& zo::EditorDifferences::missing(
    const ZoString& container) const {
  static const std::vector<const ZoVariantChange*> none;
  const auto found = missing_.find(std::wstring(container.view()));
  return found == missing_.end() ? none : found->second;
}
