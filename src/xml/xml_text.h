// What XML can hold: characters, names, and texts as they are written. Needs no platform.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zo {

// The position of the first unit that no XML can hold: control characters but tab and line ends,
// lone surrogates, U+FFFE and U+FFFF; npos where there is none.
[[nodiscard]] std::size_t firstUnfit(std::wstring_view text) noexcept;

// A name of the letters that every edition of XML takes; with at most one colon, inside.
[[nodiscard]] bool isXmlName(std::wstring_view name) noexcept;
// The same without a colon.
[[nodiscard]] bool isPlainXmlName(std::wstring_view name) noexcept;

// Append a text as it stands between tags, or between quotation marks as an attribute.
void appendXmlText(std::wstring_view text, std::wstring& out);
void appendXmlAttribute(std::wstring_view text, std::wstring& out);

// The text of a piece between tags or quotation marks, its references put in: those to characters
// and the five that need no declaration. False for any other.
[[nodiscard]] bool takeXmlReferences(std::wstring_view piece, std::wstring& out);

// Line and column of a position, from 1: CR LF, LF and CR end lines.
struct TextPlace {
  unsigned int line = 0;
  unsigned int column = 0;
};
[[nodiscard]] TextPlace placeOf(std::wstring_view text, std::size_t position) noexcept;
// The line in which the position lies, or a piece of it around the position where it is long.
[[nodiscard]] std::wstring_view lineAround(std::wstring_view text, std::size_t position) noexcept;
// The position of a line and a column, or of the line's end.
[[nodiscard]] std::size_t positionOf(std::wstring_view text, TextPlace place) noexcept;

}  // namespace zo
