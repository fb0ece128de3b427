// Texts of the tool: UTF-16 inside, as the library has them, and UTF-8 outside.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zolib {

// What is no text becomes U+FFFD.
std::string toUtf8(std::wstring_view text);
void toUtf8(std::wstring_view text, std::string& utf8);  // in the memory that it has
std::wstring toWide(std::string_view utf8);

// A name as it is compared: in lower case, levels separated by slashes.
std::wstring folded(std::wstring_view name);

// The whole number of bytes ("1536") is for tables; this is for people: "1.5 KB".
std::string readableSize(std::uint64_t bytes);
// Packed bytes in per cent of the original ones, "-" where there are none.
std::string ratioText(std::uint64_t packed, std::uint64_t size);
// "2026-11-21 10:57", in local time; "-" for no time. Valid until the next call; one thread.
std::string_view localTime(const FILETIME& time);
// "2026-11-21T10:57:02.1234567Z"; empty for no time.
std::string isoTime(const FILETIME& time);

// Columns of a table: the text, filled up with blanks in front or behind, and two blanks.
void appendRight(std::string& line, std::string_view utf8, std::size_t width);
void appendLeft(std::string& line, std::string_view utf8, std::size_t width);

constexpr std::uint64_t ticks(const FILETIME& time) noexcept {
  return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

constexpr FILETIME fileTime(std::uint64_t value) noexcept {
  return {static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
}

}  // namespace zolib
