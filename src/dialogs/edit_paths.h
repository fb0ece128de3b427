// Paths of elements, taken apart and made.
#pragma once

#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace zo {

// Number of steps.
[[nodiscard]] inline unsigned int depthOf(std::wstring_view path) noexcept {
  if (path.empty()) return 0;
  return static_cast<unsigned int>(std::ranges::count(path, L'/')) + 1;
}

[[nodiscard]] inline ZoString pathOf(const ZoString& outer, std::wstring_view step, bool isKey) {
  std::wstring path(outer.view());
  if (!path.empty()) path += L'/';
  if (isKey)
    path += ZoVariant::pathStep(step).view();
  else
    path += step;
  return ZoString(std::wstring_view(path));
}
[[nodiscard]] inline ZoString pathOf(const ZoString& outer, const ZoString& key) {
  return pathOf(outer, key.view(), true);
}
[[nodiscard]] inline ZoString pathOf(const ZoString& outer, unsigned int position) {
  return pathOf(outer, std::to_wstring(position), false);
}

[[nodiscard]] inline std::wstring_view outerOf(std::wstring_view path) noexcept {
  const size_t slash = path.rfind(L'/');
  return path.substr(0, slash == std::wstring_view::npos ? 0 : slash);
}
[[nodiscard]] inline std::wstring_view lastStepOf(std::wstring_view path) noexcept {
  return path.substr(path.rfind(L'/') + 1);  // npos + 1 is 0
}

// A step as users see it: the key, or the position in brackets.
[[nodiscard]] inline ZoString stepName(const ZoVariant& container, std::wstring_view step) {
  ZoString name(step);
  if (container.asSequence()) return L"[" + name + L"]";
  name.replaceAll(L"~1", L"/");
  name.replaceAll(L"~0", L"~");
  return name;
}

// The last step of a path that leads somewhere: the container, and the element's key as it is
// written there, or its position.
struct LastStep {
  LastStep(const ZoVariant& root, std::wstring_view path) : outer(outerOf(path)) {
    const ZoVariant* const element = root.find(path);
    for (const auto [name, at, value] : container(root).elements()) {
      if (&value != element) continue;
      position = at;
      if (name) key = *name;
      break;
    }
  }
  [[nodiscard]] const ZoVariant& container(const ZoVariant& root) const {
    return *root.find(outer.view());
  }

  ZoString outer;
  ZoString key;
  unsigned int position = 0;
};

}  // namespace zo
