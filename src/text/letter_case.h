// Letter case of UTF-16 units, one unit to one unit: of all of Unicode, and the same in every
// locale, so that names and keys keep their equality, order and hash when a program sets its
// locale. (The runtime's towlower knows ASCII only until then.)
#pragma once

#include "text/code_units.h"

namespace zo {

// The lower-case form as the platform maps it: what file names that differ only in case share.
[[nodiscard]] wchar_t lowerByPlatform(wchar_t c) noexcept;
[[nodiscard]] inline wchar_t lowerCase(wchar_t c) noexcept {
  return c < 0x80 ? lowerAscii(c) : lowerByPlatform(c);
}

// What each of the 0x10000 units folds to, in upper case: the keys of containers fold further than
// file names do, so that also the final sigma, the signs for Kelvin and Angstrom and the digraphs
// in title case are equal to their letters. The table is built on first use; any thread.
[[nodiscard]] const wchar_t* foldTable() noexcept;

}  // namespace zo
