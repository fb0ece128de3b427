// Putting a complete file in the place of another in one step.
//
// Errors: false leaves the reason in the last error.
#pragma once

#include <zo/names/file_name.h>

#include "files/fresh_file.h"
#include "platform/system_path.h"

namespace zo {

// Renames what stands beside the target, and is closed, to the target's name: then it is not ours
// any more. A target that exists is replaced, or with `failIfExists` refused; one that is read-only
// is refused. The step is on the disk when this returns. Needs no memory.
[[nodiscard]] bool putInPlace(FreshFile& complete, const SystemPath& target,
                              bool failIfExists) noexcept;

// Copies a file beside the target and puts it in place. A failure leaves the target as it was and
// nothing beside it.
[[nodiscard]] bool copyIntoPlace(const ZoFileName& from, const ZoFileName& to, bool failIfExists);

// Renames a file or folder, also where only the case of letters changes; any other target that
// exists is refused. Some platforms say yes to such a change and keep the old name: there it goes
// by a name beside the target, and back when the second step fails. Once it is renamed, nothing
// throws.
[[nodiscard]] bool rename(const ZoFileName& from, const ZoFileName& to);
// Whether two names are one but for the case of letters, as seen from the current folder.
[[nodiscard]] bool differInCaseAtMost(const ZoFileName& a, const ZoFileName& b);

}  // namespace zo
