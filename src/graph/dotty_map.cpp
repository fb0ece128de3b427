#include <zo/graph/dotty_map.h>

#include <algorithm>

const void* ZoDottyMap::find(const wchar_t* name) const {
  const std::wstring_view wanted = name ? std::wstring_view(name) : std::wstring_view();
  const auto found = std::find_if(names_.begin(), names_.end(), [&](const auto& known) {
    return known->equals(wanted, ZoString::ignoreCase);
  });
  return found == names_.end() ? nullptr : found->get();
}

const void* ZoDottyMap::add(ZoDottyGraph& graph, const wchar_t* name, const wchar_t* color) {
  if (const void* known = find(name)) return known;
  names_.push_back(std::make_shared<const ZoString>(name));
  const void* key = names_.back().get();
  try {
    graph.addNode(key, name, color);
  } catch (...) {
    names_.pop_back();
    throw;
  }
  return key;
}
