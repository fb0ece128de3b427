// Standard services of which nothing can be done without a host: they say so in their contracts.
#include <zo/system/layer.h>
#include <zo/system/standard_mgr.h>

#include "system/service_scope.h"

int ZoStdLayer::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }
int ZoStdLayer::getCurrent(ZoString&) { return ZoResult::refused; }
int ZoStdLayer::setCurrent(const ZoString&) { return ZoResult::refused; }
bool ZoStdLayer::exists(const ZoString&) { return false; }

int ZoStdStandardMgr::release(const wchar_t* module) {
  return zo::releaseWithLibrary(this, module);
}
int ZoStdStandardMgr::getStandard(const ZoString&, ZoVariant&) { return ZoResult::refused; }
