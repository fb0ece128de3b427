// The platform's collation ignoring case, in the locale 0x400 (that of the user).
#pragma once

#include <string_view>

namespace zo {

// -1, 0 or 1; 1 also when the platform fails. What the user's locale makes of plain texts is learnt
// (plain_order.h), for all else the platform is asked.
[[nodiscard]] int compareIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept;

// Whether compareIgnoreCase gives 0. Printable ASCII of which one text differs from the other by
// more than the case of a to z is decided here, whatever the locale.
[[nodiscard]] bool equalIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept;

}  // namespace zo
