// Whether a text is one of the constants that a program or DLL was built with.
#pragma once

namespace zo {

// Whether the memory is part of a loaded module and cannot be written to: a literal lies there, and
// stays as long as its module.
[[nodiscard]] bool isConstantMemory(const void* memory) noexcept;

}  // namespace zo
