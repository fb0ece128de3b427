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

bool areLikeContainers(const ZoVariant& a, const ZoVariant& b) noexcept {
  return a.type() == b.type() && (a.asDict() || a.asSequence());
}

// In reports these stand without their elements.
bool isOfHeads(const ZoVariantChange& change) {
  return areLikeContainers(change.before, change.after) && change.before.entries() == 0 &&
         change.after.entries() == 0;
}

}  // namespace

// The edited one is the report's older one: so all paths but those of what is missing are its own.
zo::EditorDifferences::EditorDifferences(const ZoVariant& edited, const ZoVariant& other)
    : report_(edited, other),
      whole_(report_.isEmpty()                                                  ? kSame
             : !areLikeContainers(edited, other)                                ? kOtherKind
             : edited.code() != other.code() || edited.flags() != other.flags() ? kOtherHead
                                                                                : kSame) {
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
    isInside = holdsAll(std::wstring(outer));
    return !isInside;
  });
  return isInside;
}

// Whether all that is in the element differs: the other one has nothing there, or nothing of the
// kind. The path of the whole is also that of an entry with an empty key.
bool zo::EditorDifferences::holdsAll(const std::wstring& outer) const {
  if (outer.empty()) return whole_ == kOtherKind;
  const auto found = changes_.find(outer);
  return found != changes_.end() && !isOfHeads(*found->second);
}

const ZoVariant* zo::EditorDifferences::other(const ZoString& path) const {
  const auto found = changes_.find(std::wstring(path.view()));
  const bool isThere = found != changes_.end() &&
                       found->second->kind == ZoVariantChange::kChanged &&
                       !isOfHeads(*found->second);
  return isThere ? &found->second->after : nullptr;
}

const std::vector<const ZoVariantChange*>& zo::EditorDifferences::missing(
    const ZoString& container) const {
  static const std::vector<const ZoVariantChange*> none;
  const auto found = missing_.find(std::wstring(container.view()));
  return found == missing_.end() ? none : found->second;
}
