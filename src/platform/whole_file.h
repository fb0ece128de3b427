// All bytes of a file.
#pragma once

#include <cstddef>
#include <string>

namespace zo {

// False when there is no such file, it has more bytes than that, or it cannot be read; the bytes
// are then as they were.
[[nodiscard]] bool readWholeFile(const wchar_t* name, std::size_t most, std::string& bytes);

}  // namespace zo
