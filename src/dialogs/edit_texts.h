// The values of variants as a user types and reads them.
#pragma once

#include <string_view>

class ZoString;
class ZoVariant;

namespace zo {

// Reads a text into the kind and code of a variant that is no container; an empty one becomes a
// text. Returns 0; refused; or timeOut, when the units service was held elsewhere; and then the
// variant is as it was. What a client's own units service throws is a refusal.
[[nodiscard]] int readText(std::wstring_view text, ZoVariant& value);

// The text of a value as ZoVariantEdits::textOf has it. timeOut when the units service was held
// elsewhere: it is then the bare number, which readText would read otherwise. For a second after
// that the service is not asked, so that many values do not wait one by one.
[[nodiscard]] int printText(const ZoVariant& value, ZoString& text);

}  // namespace zo
