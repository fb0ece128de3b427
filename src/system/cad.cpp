#include <zo/system/cad.h>

#include <vector>

#include "system/first_failure.h"
#include "system/service_scope.h"

ZoDwgGlobals::~ZoDwgGlobals() = default;

// The end of globals may take others back.
ZoStdCad::~ZoStdCad() {
  while (globals_.entries() > 0) {
    const auto [key, globals] = *globals_.begin();
    ZoDwgGlobals* const last = globals;
    globals_.removeAt(ZoString(key));
    delete last;
  }
}

int ZoStdCad::release(const wchar_t* module) {
  poolRelease(module);
  return zo::releaseWithLibrary(this, module);
}

// Globals may register and take back others while they are asked: who is asked is settled before,
// and each is looked up again by name.
void ZoStdCad::poolRelease(const wchar_t* module) {
  if (!module) return;
  const zo::Writing writing(*this);
  if (!writing) return;
  std::vector<ZoString> names;
  for (const auto [key, globals] : globals_) names.push_back(key);
  zo::FirstFailure failure;
  for (const ZoString& name : names) {
    failure.run([&] {
      ZoDwgGlobals* const asked = dwgGlobals(name);
      if (!asked || asked->release(module) != 0) return;
      if (dwgGlobals(name) == asked) globals_.removeAt(name);  // they may have named a successor
    });
  }
  failure.rethrow();
}

bool ZoStdCad::isPresent() { return false; }

int ZoStdCad::registerGlobals(ZoDwgGlobals* globals) {
  const zo::Writing writing(*this);
  if (!writing || !globals) return ZoResult::refused;
  return globals_.insertAt(globals->name(), globals);
}

ZoDwgGlobals* ZoStdCad::dwgGlobals(const ZoString& name) {
  const zo::Reading reading(*this);
  if (!reading) return nullptr;
  ZoDwgGlobals** const globals = globals_.at(name);
  return globals ? *globals : nullptr;
}

int ZoStdCad::unregisterGlobals(const ZoString& name) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  return globals_.removeAt(name);
}
