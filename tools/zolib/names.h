// From paths to the names of members, and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "say.h"

namespace zolib {

// A path as the user's shell has it. Under Wine the shell's root is not the current drive's: the
// wrapper gives its drive in the environment as ZOLIB_ROOT, and a path that begins with one slash
// begins there.
std::wstring shellPath(std::wstring_view path);

// The name that a file or folder gets in a library: its path with slashes, without "." and with
// ".." resolved. What is absolute or leads out of the current folder goes by its last level alone.
// Empty for the current folder itself, those above it, and roots.
std::wstring memberName(std::wstring_view path);

// Why a member is not written to a file of its name: it would lead out of the folder for which it
// is meant, or the platform would take the name for something else. Nothing when it is safe.
std::optional<Text> refusalOf(std::wstring_view member);

// The two with a slash between, where the folder needs one.
std::wstring joined(std::wstring_view folder, std::wstring_view name);
// Up to the last slash, without it; empty without one.
std::wstring_view folderOf(std::wstring_view name) noexcept;

}  // namespace zolib
