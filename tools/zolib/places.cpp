#include "places.h"

#include "names.h"
#include "text.h"

namespace zolib {

Places::Places(Session& session, const std::unordered_set<std::wstring>& leaving) {
  if (!session.isOpen()) return;
  static_cast<void>(session->forEachEntry([&](const ZoLibEntry& entry) {
    if (!leaving.contains(folded(entry.name.view()))) take(entry.name.view());
    return true;
  }));
}

std::wstring Places::takenOf(std::wstring_view name) const {
  const std::wstring key = folded(name);
  if (folders_.contains(key)) return std::wstring(name);
  for (std::wstring_view folder = folderOf(key); !folder.empty(); folder = folderOf(folder))
    if (files_.contains(std::wstring(folder))) return std::wstring(name.substr(0, folder.size()));
  return {};
}

void Places::take(std::wstring_view name) {
  const std::wstring key = folded(name);
  // Of a folder that is known those above it are, too.
  for (std::wstring_view folder = folderOf(key); !folder.empty(); folder = folderOf(folder))
    if (!folders_.insert(std::wstring(folder)).second) break;
  files_.insert(key);
}

std::wstring Places::takeIfFree(std::wstring_view name) {
  std::wstring taken = takenOf(name);
  if (taken.empty()) take(name);
  return taken;
}

bool Places::hasFile(std::wstring_view name) const { return files_.contains(folded(name)); }

}  // namespace zolib
