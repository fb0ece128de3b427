// What stands in the data of a notice.
#pragma once

#include <zo/text/string.h>

class ZoVariant;

namespace zo {

// The "Module" entry; empty when it is absent or no text.
[[nodiscard]] ZoString moduleOf(const ZoVariant& data);

}  // namespace zo
