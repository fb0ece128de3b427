// From paths to the names of members, and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "paths.h"
#include "say.h"

namespace zolib {

// The name that a file or folder gets in a library: its path with slashes, without "." and with
// ".." resolved. What is absolute or leads out of the current folder goes by its last level alone.
// Empty for the current folder itself, those above it, and roots.
std::wstring memberName(std::wstring_view path);

// Why a member is not written to a file of its name: it would lead out of the folder for which it
// is meant, or the platform would take the name for something else. Nothing when it is safe.
std::optional<Text> refusalOf(std::wstring_view member);

}  // namespace zolib
