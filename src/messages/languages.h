// Which languages texts are looked up in, and in which order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zo {

// Tags that differ only in case are the same language.
[[nodiscard]] bool isSameTag(std::wstring_view a, std::wstring_view b) noexcept;

// Those of the setting "messages@language", then the user's.
[[nodiscard]] std::vector<std::wstring> userLanguages();

// Each language once, and behind it those that it is a form of: de-AT, de.
[[nodiscard]] std::vector<std::wstring> withParents(const std::vector<std::wstring>& languages);

}  // namespace zo
