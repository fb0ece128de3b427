// Paths as a user writes them, and their parts.
#pragma once

#include <string>
#include <string_view>

namespace zolib {

// A path as the user's shell has it. Under Wine the shell's root is not the current drive's: the
// wrapper gives its drive in the environment as ZOLIB_ROOT, and a path that begins with one slash
// begins there.
std::wstring shellPath(std::wstring_view path);

// The two with a slash between, where the folder needs one.
std::wstring joined(std::wstring_view folder, std::wstring_view name);
// Up to the last slash, without it; empty without one.
std::wstring_view folderOf(std::wstring_view name) noexcept;

}  // namespace zolib
