#include <zo/results.h>
#include <zo/system/cad.h>
#include <zo/system/cfg.h>
#include <zo/system/codepage.h>
#include <zo/system/error.h>
#include <zo/system/exception.h>
#include <zo/system/execute.h>
#include <zo/system/file_open.h>
#include <zo/system/file_search.h>
#include <zo/system/file_system.h>
#include <zo/system/layer.h>
#include <zo/system/macro_lib.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>
#include <zo/system/standard_mgr.h>
#include <zo/system/sys_disp.h>
#include <zo/system/sys_info.h>
#include <zo/system/units.h>
#include <zo/variant/variant.h>

#include <new>
#include <typeinfo>
#include <utility>

#include "system/first_failure.h"
#include "system/notice_data.h"
#include "system/service_or_null.h"

#define SLOT(Name)                         \
  Zo##Name* ZoSystem::s_p##Name = nullptr; \
  Zo##Name* ZoSystem::s_pStd##Name = nullptr;
ZO_SERVICE_SLOTS(SLOT)
#undef SLOT

ZoTol ZoSystem::s_tolerance;

namespace {

void sendChanged(const wchar_t* type, const ZoString& className) {
  auto* const dispatcher = zo::serviceOrNull<ZoSysDisp>();
  if (!dispatcher) return;
  ZoHashDict<ZoVariant, ZoString> data(ZoVHash::kDefaultBuckets, 0.7);
  if (data.insertAt(L"Type", ZoVariant(type)) || data.insertAt(L"Class", ZoVariant(className)))
    throw std::bad_alloc();
  // A setter has no code for a dispatcher that is busy: its service is installed all the same.
  static_cast<void>(dispatcher->sendNotice(ZoSysNotice::serviceChanged, ZoVariant(data)));
}

// Puts the service into its slot. Gives the name of its class; none when there is no notice to
// send.
template <class Service>
ZoString install(Service*& slot, Service* service) {
  Service* const before = std::exchange(slot, service);
  if (!service) return {};
  if (before != service) delete before;
  return ZoString().setFromMB(typeid(*service).name());
}

// The two passes over one slot. The service is looked up for each: another may be there by then.
void tell(zo::FirstFailure& failure, ZoSysObj* service, ZoSysNotice notice, const ZoVariant& data) {
  if (service) failure.run([&] { service->onReactor(notice, data); });
}

template <class Service>
void release(zo::FirstFailure& failure, Service*& installed, ZoSysObj* standard,
             const wchar_t* module) {
  if (standard) failure.run([&] { standard->poolRelease(module); });
  Service* const service = installed;
  if (!service) return;
  failure.run([&] {
    if (service->release(module) == 0 && installed == service) installed = nullptr;
  });
}

}  // namespace

#define SLOT(Name)                                          \
  int ZoSystem::set##Name(Zo##Name* service) {              \
    const ZoString className = install(s_p##Name, service); \
    if (service) sendChanged(L"Zo" L## #Name, className);   \
    return ZoResult::ok;                                    \
  }
ZO_SERVICE_SLOTS(SLOT)
#undef SLOT

int ZoSystem::setTolerance(const ZoTol& tolerance) {
  s_tolerance = tolerance;
  sendChanged(L"ZoTol", L"ZoTol");
  return ZoResult::ok;
}

void ZoSystem::throwNoService(const wchar_t* accessor) {
  constexpr auto* text = L"No services: call zoComDllAttach() before, and zoComDllDetach() last";
  zoThrow(ZoComException(L"zo/system/registry.h", accessor, text, 0, true));
}

void ZoSystem::sendNotice(ZoSysNotice notice, const ZoVariant& data) {
  zo::FirstFailure failure;
#define SLOT(Name) tell(failure, s_p##Name ? s_p##Name : s_pStd##Name, notice, data);
  ZO_SERVICE_SLOTS(SLOT)
#undef SLOT
  if (notice == ZoSysNotice::moduleReleased) {
    const ZoString module = zo::moduleOf(data);
#define SLOT(Name) release(failure, s_p##Name, s_pStd##Name, module);
    ZO_SERVICE_SLOTS(SLOT)
#undef SLOT
  }
  failure.rethrow();
}
