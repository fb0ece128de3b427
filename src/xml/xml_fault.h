// Where a text is not well-formed: asked only once the platform has refused it, since some versions
// of it do not tell the place. Needs no platform.
#pragma once

#include <cstddef>
#include <string_view>

namespace zo {

struct XmlFault {
  std::size_t at = 0;
  const wchar_t* reason = nullptr;  // a sentence; null where nothing is wrong that is looked for
};
// The first fault of tags, attributes, references, comments and what lies outside of the root.
// Names are not looked at by letter, and document types not at all.
[[nodiscard]] XmlFault findXmlFault(std::wstring_view text);

}  // namespace zo
