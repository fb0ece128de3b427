// How variants look in a failed assertion.
#pragma once

#include <zo/variant/variant.h>

#include <ostream>

#include "support/printers.h"

inline void PrintTo(const ZoVariant& value, std::ostream* out) {
  *out << (value.isReference() ? "reference: " : "");
  PrintTo(value.format(), out);
}
