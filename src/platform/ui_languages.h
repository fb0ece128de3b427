// The languages in which the user wants to see programs, the one wanted most first: "de-AT".
#pragma once

#include <string>
#include <vector>

namespace zo {

[[nodiscard]] std::vector<std::wstring> uiLanguages();

}  // namespace zo
