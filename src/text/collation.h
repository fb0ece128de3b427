// The platform's collation ignoring case, in the locale 0x400 (that of the user).
#pragma once

#include <string_view>

namespace zo {

// -1, 0 or 1; 1 also when the platform fails.
[[nodiscard]] int compareIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept;

// Whether compareIgnoreCase gives 0. Printable ASCII is decided here: over it, the platform's
// answer is "equal" exactly when the texts are the same after folding a to z (the order is another
// matter).
[[nodiscard]] bool equalIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept;

}  // namespace zo
