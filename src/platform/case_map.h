// Upper case of single UTF-16 units, the same in every locale.
#pragma once

namespace zo {

// What the platform's invariant casing makes of the unit; the unit itself where that is no single
// unit. The table behind it is built on first use; any thread.
[[nodiscard]] wchar_t upperUnit(wchar_t c);

}  // namespace zo
