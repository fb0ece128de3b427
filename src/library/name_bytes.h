// Names of members as bytes: in the ANSI code page, with escapes for what that does not hold.
//
// Format: docs/formats/library.md, "Name".
#pragma once

#include <zo/names/file_name.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zo {

// False for an empty name, and for one of more than 65535 bytes.
[[nodiscard]] bool encodeName(const ZoFileName& name, std::string& bytes);
[[nodiscard]] std::wstring decodeName(std::string_view bytes);
[[nodiscard]] ZoFileName memberName(std::string_view bytes);
void setMemberName(ZoFileName& name, std::string_view bytes);
// Whether the bytes are ASCII and stand for themselves.
[[nodiscard]] bool isPlainName(std::string_view bytes) noexcept;
// Whether the bytes are the wanted name, ignoring case: nearly always told without decoding them.
[[nodiscard]] bool isNamed(std::string_view bytes, std::wstring_view wanted);
// Equal names have equal hashes, as text and as bytes.
[[nodiscard]] std::uint32_t shortHash(std::wstring_view name) noexcept;
[[nodiscard]] std::uint32_t hashNameBytes(std::string_view bytes);

}  // namespace zo
