// What may stand in a file name: the checks that a parse reports.
#pragma once

#include "names/name_parser.h"

namespace zo {

// Each gives 0 or the code of zo/names/name_results.h that it stands for.
[[nodiscard]] int checkCharacters(const NameParts& name, bool wildcards) noexcept;
[[nodiscard]] int checkForm(const NameParts& name) noexcept;
[[nodiscard]] int checkEnd(std::wstring_view component) noexcept;

// The first code that is not 0, in this order: characters, form, end, length.
[[nodiscard]] int checkName(const NameParts& name, bool wildcards) noexcept;

// Whether a text may stand in the named part of a name of this kind.
[[nodiscard]] bool fitsFileName(std::wstring_view text, NameKind kind, bool wildcards) noexcept;
[[nodiscard]] bool fitsExtension(std::wstring_view text, bool wildcards) noexcept;
[[nodiscard]] bool fitsDirectory(std::wstring_view text, NameKind kind) noexcept;

[[nodiscard]] bool holdsWildcards(std::wstring_view text) noexcept;

// Whether the platform takes this component (a directory level, or file name with extension) for a
// device, wherever it stands and whatever extension it has: con, prn, aux, nul, com1 to com9, lpt1
// to lpt9 (superscript 1 to 3 likewise), conin$, conout$, clock$.
[[nodiscard]] bool isDeviceName(std::wstring_view component) noexcept;

}  // namespace zo
