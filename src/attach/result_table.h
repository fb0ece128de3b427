// The one table of result codes: zoResultText and docs/results.md say what stands here.
#pragma once

#include <zo/result_text.h>

#include <span>

namespace zo {

struct ResultEntry {
  ZoResultFamily family;
  int code;
  const char* name;  // the constant that has the code
  const wchar_t* text;
};

// The message file with the texts, and the number of each in it.
inline constexpr const wchar_t* kResultFile = L"zoresult";
[[nodiscard]] constexpr int resultNumber(int code, ZoResultFamily family) noexcept {
  return static_cast<int>(static_cast<unsigned int>(family) << 16 |
                          (static_cast<unsigned int>(code) & 0xFFFF));
}
// Of codes that no family has: %1 is the code.
inline constexpr int kUnknownResult = 0x7FFFFFFF;
inline constexpr const wchar_t* kUnknownResultText = L"Unknown result code %1.";

// By family in the order of their enumeration, and by code.
[[nodiscard]] std::span<const ResultEntry> resultTable() noexcept;

}  // namespace zo
