// Code pages by name. Whether the platform has them is not looked at here.
#pragma once

#include <string>
#include <string_view>

namespace zo {

[[nodiscard]] std::wstring codepageName(unsigned int codepage);
// 0 when the name is unknown.
[[nodiscard]] unsigned int codepageOfName(std::wstring_view name);

}  // namespace zo
