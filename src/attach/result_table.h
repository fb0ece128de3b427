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

// By family in the order of their enumeration, and by code.
[[nodiscard]] std::span<const ResultEntry> resultTable() noexcept;

}  // namespace zo
