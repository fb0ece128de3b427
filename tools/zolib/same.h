// Whether a file is what a member holds.
#pragma once

#include <optional>

#include "session.h"
#include "sources.h"

namespace zolib {

// By size and the time of the last change.
[[nodiscard]] bool looksSame(const Source& source, const ZoLibEntry& entry) noexcept;
// By size and check value: reads the file, and of members without a check value these. Nothing when
// one of them cannot be read.
[[nodiscard]] std::optional<bool> isSame(const Source& source, Session& session,
                                         const ZoLibEntry& entry);

}  // namespace zolib
