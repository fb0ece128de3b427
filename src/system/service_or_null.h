// The services for the library's own code, none of which needs one to survive:
//
//   if (auto* const files = zo::serviceOrNull<ZoFileSystem>()) files->errorIO(L"open");
//
// An accessor of ZoSystem throws where there is none, and is for clients.
#pragma once

#include <zo/system/registry.h>

#include <type_traits>

#include "system/service_slots.h"

namespace zo {

struct ServiceSlots {
#define SLOT(Name)                                                             \
  static Zo##Name* inForce(std::type_identity<Zo##Name>) noexcept {            \
    return ZoSystem::s_p##Name ? ZoSystem::s_p##Name : ZoSystem::s_pStd##Name; \
  }
  ZO_SERVICE_SLOTS(SLOT)
#undef SLOT
};

// The service in force: the installed one, else the standard one, else null.
template <class Service>
[[nodiscard]] Service* serviceOrNull() noexcept {
  return ServiceSlots::inForce(std::type_identity<Service>{});
}

}  // namespace zo
