// Simple case folding of UTF-16 units, the same in every locale.
#pragma once

namespace zo {

// What each of the 0x10000 units folds to, in upper case: units that differ only in case fold to
// one, also the final sigma, the signs for Kelvin and Angstrom and the digraphs in title case. The
// table is built on first use; any thread.
[[nodiscard]] const wchar_t* foldTable() noexcept;

}  // namespace zo
