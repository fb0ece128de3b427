// What the platform says of one of its error codes.
#pragma once

#include <string>

namespace zo {

// A sentence with the line end that the platform adds; empty for codes that it does not know. Takes
// HRESULTs, too.
[[nodiscard]] std::wstring errorText(unsigned long error);

// The system error within an HRESULT that has one; any other number as it is.
[[nodiscard]] unsigned long systemErrorOf(unsigned long error) noexcept;

}  // namespace zo
