// All of some bytes into an open file of the platform, where one call may take only a part of them.
//
// Errors:  fewer bytes than asked for, with the reason in the last error; a call that takes nothing
//          and claims success counts as a full disk.
#pragma once

#include <windows.h>

#include <cstddef>

namespace zo {

// At the file's position. Returns how many bytes were written.
[[nodiscard]] std::size_t writeAll(HANDLE file, const void* bytes, std::size_t count) noexcept;

}  // namespace zo
