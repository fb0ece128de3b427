// Settings as registry values: docs/configuration.md, "Types".
#pragma once

#include <zo/host/sec_registry.h>
#include <zo/variant/variant.h>

namespace zo {

// Reads a value of the open key; false when there is none or it cannot be read.
[[nodiscard]] bool readValue(SECRegistry& registry, const wchar_t* name, ZoVariant& value);
// Writes a value of the open key; false when the platform refuses or the value is not storable.
[[nodiscard]] bool writeValue(SECRegistry& registry, const wchar_t* name, const ZoVariant& value);
// Whether a setting can be made of the value: not of a real that no int can hold.
[[nodiscard]] bool isStorable(const ZoVariant& value) noexcept;

}  // namespace zo
