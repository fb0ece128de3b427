// Texts that stay valid as long as the library is loaded, each once in the process.
//
// Threads: any.
#pragma once

#include <string_view>

namespace zo {

// Null when there is no memory for it.
[[nodiscard]] const wchar_t* interned(std::wstring_view text) noexcept;

}  // namespace zo
