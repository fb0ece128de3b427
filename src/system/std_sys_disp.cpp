#include <zo/results.h>
#include <zo/system/registry.h>
#include <zo/system/std_sys_disp.h>

#include "system/delivery.h"
#include "system/service_scope.h"

ZoSystemReactor::~ZoSystemReactor() = default;
ZoCustomReactor::~ZoCustomReactor() = default;

namespace {

// Equal priorities are equal reactors; the smaller one sorts first.
template <class Reactor>
class ByPriority final : public ZoCompare<Reactor*> {
 public:
  [[nodiscard]] int compare(Reactor* const& a, Reactor* const& b) const override {
    const double first = a->priority();
    const double second = b->priority();
    if (first == second) return 0;
    return first < second ? -1 : 1;
  }
};

// Takes every registration of a reactor out of its list.
template <class Reactor>
void forget(ZoList<Reactor*>& reactors, Reactor* reactor, zo::Delivery* innermost) {
  unsigned int i = 0;
  for (auto entry = reactors.begin(); entry != reactors.end();) {
    const auto here = entry++;
    if (*here == reactor) {
      zo::Delivery::leave(innermost, here);
      reactors.removeAt(i);
    } else {
      ++i;
    }
  }
}

// A reactor's end may register and remove others.
template <class Reactor>
void destroyAll(ZoList<Reactor*>& reactors) {
  while (reactors.entries() > 0) {
    Reactor* const reactor = *reactors.begin();
    forget<Reactor>(reactors, reactor, nullptr);
    delete reactor;
  }
}

}  // namespace

ZoStdSysDisp::~ZoStdSysDisp() {
  zo::Delivery::abandon(innermost_);
  destroyAll(systemReactors_);
  destroyAll(customReactors_);
}

template <class Reactor>
int ZoStdSysDisp::add(ZoList<Reactor*>& reactors, Reactor* reactor) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  if (!reactor) return ZoResult::invalid;
  if (const int code = reactors.append(reactor)) return code;
  const unsigned int last = reactors.entries() - 1;
  try {
    if (const int code = reactors.sort(ByPriority<Reactor>())) {
      reactors.removeAt(last);
      return code;
    }
  } catch (...) {  // a priority() threw, and nothing has moved
    reactors.removeAt(last);
    throw;
  }
  return ZoResult::ok;
}

template <class Reactor>
int ZoStdSysDisp::remove(ZoList<Reactor*>& reactors, Reactor* reactor) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  if (!reactor) return ZoResult::invalid;
  unsigned int i = 0;
  for (auto entry = reactors.begin(); entry != reactors.end(); ++entry, ++i) {
    if (*entry != reactor) continue;
    zo::Delivery::leave(innermost_, entry);
    return reactors.removeAt(i);
  }
  return ZoResult::refused;
}

int ZoStdSysDisp::addReactor(ZoCustomReactor* reactor) { return add(customReactors_, reactor); }
int ZoStdSysDisp::addReactor(ZoSystemReactor* reactor) { return add(systemReactors_, reactor); }
int ZoStdSysDisp::removeReactor(ZoCustomReactor* reactor) {
  return remove(customReactors_, reactor);
}
int ZoStdSysDisp::removeReactor(ZoSystemReactor* reactor) {
  return remove(systemReactors_, reactor);
}

int ZoStdSysDisp::sendNotice(const wchar_t* name, const ZoVariant& data) {
  zo::Delivery delivery(*this);
  if (!delivery) return ZoResult::refused;
  delivery.walk(customReactors_, [&](ZoCustomReactor* r) { r->onNotice(name, data); });
  delivery.rethrow();
  return ZoResult::ok;
}

int ZoStdSysDisp::sendRequest(const wchar_t* name, ZoVariant& data) {
  zo::Delivery delivery(*this);
  if (!delivery) return ZoResult::refused;
  delivery.walk(customReactors_, [&](ZoCustomReactor* r) { r->onRequest(name, data); });
  delivery.rethrow();
  return ZoResult::ok;
}

// A reactor or service may destroy this dispatcher on the way: only `delivery` is used after it.
int ZoStdSysDisp::sendNotice(ZoSysNotice notice, const ZoVariant& data) {
  zo::Delivery delivery(*this);
  if (!delivery) return ZoResult::refused;
  delivery.walk(systemReactors_, [&](ZoSystemReactor* r) { r->onNotice(notice, data); });
  delivery.run([&] { ZoSystem::sendNotice(notice, data); });
  delivery.rethrow();
  return ZoResult::ok;
}

template <class Reactor>
void ZoStdSysDisp::releaseAll(zo::Delivery& delivery, ZoList<Reactor*>& reactors,
                              const wchar_t* module) {
  delivery.walk(reactors, [&](Reactor* reactor) {
    if (reactor->release(module) != 0 || !delivery) return;
    static_cast<void>(removeReactor(reactor));  // so that a derived dispatcher sees it
    // Registered twice, or kept by a derived dispatcher: it is gone all the same.
    if (delivery) forget(reactors, reactor, innermost_);
  });
}

void ZoStdSysDisp::poolRelease(const wchar_t* module) {
  if (!module) return;
  zo::Delivery delivery(*this);
  if (!delivery) return;
  releaseAll(delivery, systemReactors_, module);
  if (delivery) releaseAll(delivery, customReactors_, module);
  delivery.rethrow();
}
