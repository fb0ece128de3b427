// What a variant says of a standard: docs/standards.md.
#pragma once

#include <zo/variant/variant.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zo {

struct Standard;

// A standard, or a sequence of them: copies that share nothing. 0, invalid.
[[nodiscard]] int readStandards(const ZoVariant& value,
                                std::vector<std::shared_ptr<Standard>>& standards);

// The table of that name, the only one for an empty name; null without it.
[[nodiscard]] const ZoVariant* standardTable(const ZoVariant& standard, std::wstring_view name);
[[nodiscard]] const ZoVariant* standardRow(const ZoVariant& table, std::wstring_view size);

}  // namespace zo
