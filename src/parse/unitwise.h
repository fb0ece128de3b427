// Whether an expression may see a text as units.
#pragma once

#include <string_view>

namespace zo {

/// Whether a pattern matches the same when it sees units instead of characters, so that pairs of
/// surrogates, and those that stand alone, need no care. A no may be wrong, a yes never is.
///
/// So it is if each character that it can match is ASCII; and where it may match others, if they
/// are the [^;]* of =[^;]*; or the .[^"]* of \\.[^"]*: from an ASCII character on as many as
/// there are, so that no match, and no group, can begin or end within a pair.
[[nodiscard]] bool isUnitwise(std::u16string_view pattern, bool hasBlanks) noexcept;

}  // namespace zo
