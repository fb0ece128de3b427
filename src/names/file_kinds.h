// The extensions that tell a kind of file.
#pragma once

#include <zo/names/file_name.h>

#include <span>

namespace zo {

// One or two with their dots, in lower case; none for kAnyFile and what is no kind.
[[nodiscard]] std::span<const wchar_t* const> kindExtensions(ZoFileName::FileKind kind) noexcept;

}  // namespace zo
