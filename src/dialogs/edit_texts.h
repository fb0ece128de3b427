// The values of variants as a user types and reads them.
#pragma once

#include <string_view>

class ZoVariant;

namespace zo {

// Reads a text into the kind and code of a variant that is no container; an empty one becomes a
// text. Returns 0, or refused, and then the variant is as it was.
[[nodiscard]] int readText(std::wstring_view text, ZoVariant& value);

}  // namespace zo
