// Variants as XML text and back (docs/formats/xml.md), without the DOM.
#pragma once

#include <zo/variant/variant.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zo {

// Appends the element of a value, without white space. False where containers lie too deep.
[[nodiscard]] bool appendVariantXml(const ZoVariant& value, std::wstring& out);

// Of a well-formed document with "\n" for all line ends.
// False for what is not written as a variant is: `at` is then the tag where that shows.
[[nodiscard]] bool readVariantXml(std::wstring_view xml, ZoVariant& value, std::size_t& at);

}  // namespace zo
