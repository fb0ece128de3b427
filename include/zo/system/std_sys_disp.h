// The standard dispatcher. Its end destroys the reactors still registered, system reactors first.
// Its poolRelease(module) asks every reactor to go and drops those that do; null asks nobody. The
// registry calls it for the standard dispatcher: one that is installed calls it from its release().
//
// Errors, Threads, Cost: as in sys_disp.h. Reactors of equal priority keep the order in which they
// were added.
#pragma once

#include <zo/system/sys_disp.h>
#include <zo/text/containers/list.h>

namespace zo {
class Delivery;
}

class ZO_COM_API ZoStdSysDisp : public ZoSysDisp {
 public:
  ZoStdSysDisp() = default;
  ZoStdSysDisp(const ZoStdSysDisp&) = delete;  // it owns its reactors
  ZoStdSysDisp& operator=(const ZoStdSysDisp&) = delete;
  ~ZoStdSysDisp() override;

  void poolRelease(const wchar_t* module) override;

  using ZoSysDisp::sendNotice;
  int sendNotice(const wchar_t* name, const ZoVariant& data) override;
  int sendNotice(ZoSysNotice notice, const ZoVariant& data) override;
  int sendRequest(const wchar_t* name, ZoVariant& data) override;
  int addReactor(ZoCustomReactor* reactor) override;
  int addReactor(ZoSystemReactor* reactor) override;
  int removeReactor(ZoCustomReactor* reactor) override;
  int removeReactor(ZoSystemReactor* reactor) override;

 private:
  friend class zo::Delivery;

  template <class Reactor>
  int add(ZoList<Reactor*>& reactors, Reactor* reactor);
  template <class Reactor>
  int remove(ZoList<Reactor*>& reactors, Reactor* reactor);
  template <class Reactor>
  void releaseAll(zo::Delivery& delivery, ZoList<Reactor*>& reactors, const wchar_t* module);

  ZoList<ZoSystemReactor*> systemReactors_;  // ascending priority
  ZoList<ZoCustomReactor*> customReactors_;  // ascending priority
  zo::Delivery* innermost_ = nullptr;        // deliveries under way, the last begun first
};
