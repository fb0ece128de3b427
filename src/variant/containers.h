// The containers that variants own: always one of these three.
#pragma once

#include <zo/variant/variant.h>

#include <memory>

namespace zo {

using OwnDict = ZoHashDict<ZoVariant, ZoString>;
using OwnArray = ZoArray<ZoVariant>;
using OwnList = ZoList<ZoVariant>;

// Of any container that a program may have made.
inline std::unique_ptr<ZoVariant::Sequence> copyOf(const ZoVariant::Sequence& from) {
  if (const auto* const array = dynamic_cast<const OwnArray*>(&from))
    return std::make_unique<OwnArray>(*array);
  if (dynamic_cast<const OwnList*>(&from)) return std::make_unique<OwnList>(from);
  return std::make_unique<OwnArray>(from);
}

inline std::unique_ptr<OwnDict> copyOf(const ZoVariant::Dict& from) {
  if (const auto* const dict = dynamic_cast<const OwnDict*>(&from))
    return std::make_unique<OwnDict>(*dict);
  return std::make_unique<OwnDict>(from);
}

}  // namespace zo
