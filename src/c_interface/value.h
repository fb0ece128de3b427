// A value behind a handle of the C interface.
#pragma once

#include <zo/variant/variant.h>

#include "c_interface/texts.h"

namespace zo::c {

class Value final : public Object {
 public:
  static constexpr Kind kKind = Kind::value;
  static constexpr bool kIsShared = false;

  Value() : Object(kKind) {}
  [[nodiscard]] bool mayClose() noexcept override { return isFree(*this); }

  ZoVariant variant;  // shares nothing with another one, and is no reference
};

}  // namespace zo::c
