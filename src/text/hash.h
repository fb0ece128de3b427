// The two text hashes of ZoStringRef.
//
// Both are h = rotl5(h) XOR word over a sequence of words. Rotation distributes over XOR, so four
// steps are rotl20(h) XOR rotl15(w0) XOR rotl10(w1) XOR rotl5(w2) XOR w3: one dependent step in the
// place of four. The values fix the iteration order of dictionaries: never change them.
#pragma once

#include <zo/text/hashed_key.h>

#include <cstddef>
#include <string_view>

namespace zo {

// Words of two units, the first in the low half; an odd last unit is a word with the unit in the
// HIGH half. Starts from the length.
[[nodiscard]] unsigned int hashExact(std::wstring_view text) noexcept;
// Words of one unit, a to z folded to A to Z. Starts from the length. Plain: printable ASCII.
[[nodiscard]] HashedKey hashFolded(const wchar_t* text, std::size_t length) noexcept;

}  // namespace zo
