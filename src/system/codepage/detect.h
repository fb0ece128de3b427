// Which Unicode encoding bytes have the form of. Needs no platform.
#pragma once

#include <string_view>

namespace zo {

enum class ByteForm { Ascii, Utf8, Utf16, Utf16BigEndian, Other };

// The encoding that a byte order mark at the front says, with its length; Other and 0 without one.
[[nodiscard]] ByteForm markedForm(std::string_view bytes, unsigned int& markLength) noexcept;
// The form of a text, or of a beginning of one that may end inside a character.
[[nodiscard]] ByteForm formOf(std::string_view bytes) noexcept;
// That of a whole text: of UTF-16 it has no odd byte, of UTF-8 no character that its end cuts, and
// a zero is a character like any other.
[[nodiscard]] ByteForm formOfWhole(std::string_view bytes) noexcept;

}  // namespace zo
