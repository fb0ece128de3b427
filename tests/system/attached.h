// The library attached for as long as a scope lasts; no service stays installed.
#pragma once

#include <gtest/gtest.h>
#include <zo/system/life_cycle.h>
#include <zo/system/registry.h>

namespace zo::test {

class Attached {
 public:
  Attached() { EXPECT_EQ(zoComDllAttach(), 0); }
  ~Attached() {
    ZoSystem::setCad(nullptr);
    ZoSystem::setCfg(nullptr);
    ZoSystem::setCodepage(nullptr);
    ZoSystem::setError(nullptr);
    ZoSystem::setExecute(nullptr);
    ZoSystem::setFileSystem(nullptr);
    ZoSystem::setFileSearch(nullptr);
    ZoSystem::setFileOpen(nullptr);
    ZoSystem::setLayer(nullptr);
    ZoSystem::setMacroLib(nullptr);
    ZoSystem::setMessage(nullptr);
    ZoSystem::setUnits(nullptr);
    ZoSystem::setStandardMgr(nullptr);
    ZoSystem::setSysDisp(nullptr);
    ZoSystem::setSysInfo(nullptr);
    EXPECT_EQ(zoComDllDetach(), 0);
  }
  Attached(const Attached&) = delete;
  Attached& operator=(const Attached&) = delete;
};

}  // namespace zo::test
