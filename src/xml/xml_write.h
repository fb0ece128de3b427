// What the DOM writes, as it is saved. Needs no platform.
#pragma once

#include <string>
#include <string_view>

namespace zo {

// Appends well-formed XML with "\n" for all line ends.
void appendXmlAsIs(std::wstring_view xml, std::wstring& out);
// The same with an element, comment or instruction a line and two blanks a level. What lies in an
// element with text beside its elements, or with xml:space="preserve", stays as it is.
void appendXmlIndented(std::wstring_view xml, std::wstring& out);

// A whole document without its declaration, a part a line; `documentType` takes the place of the
// one that it has.
[[nodiscard]] std::wstring xmlParts(std::wstring_view xml, std::wstring_view documentType);

}  // namespace zo
