// The library attached for as long as a scope lasts; no service stays installed.
#pragma once

#include <gtest/gtest.h>
#include <zo/attach/life_cycle.h>
#include <zo/system/registry.h>

#include "system/service_slots.h"

namespace zo::test {

class Attached {
 public:
  Attached() { EXPECT_EQ(zoComDllAttach(), 0); }
  ~Attached() {
#define SLOT(Name) ZoSystem::set##Name(nullptr);
    ZO_SERVICE_SLOTS(SLOT)
#undef SLOT
    EXPECT_EQ(zoComDllDetach(), 0);
  }
  Attached(const Attached&) = delete;
  Attached& operator=(const Attached&) = delete;
};

}  // namespace zo::test
