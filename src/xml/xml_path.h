// Paths of names (zo/xml/xml_node.h), cut and checked. Needs no platform.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zo {

struct XmlStep {
  std::wstring_view name;     // as it is written, with its prefix
  unsigned int position = 0;  // 0: none is written, which means the first
  bool isAttribute = false;   // the last step only
};

// False for what is no such path. The steps refer to the path.
[[nodiscard]] bool cutXmlPath(std::wstring_view path, std::vector<XmlStep>& steps);

// The first `count` steps as XPath that finds one node at most; "." for none.
[[nodiscard]] std::wstring xpathOf(const std::vector<XmlStep>& steps, std::size_t count);

// The prefix of a name, empty without one, and what stands behind it.
[[nodiscard]] std::wstring_view prefixOf(std::wstring_view name) noexcept;
[[nodiscard]] std::wstring_view withoutPrefix(std::wstring_view name) noexcept;

}  // namespace zo
