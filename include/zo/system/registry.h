// The registry of the fifteen services, through which the library and its clients reach whatever
// depends on their surroundings.
//
//   if (zoComDllAttach() != 0) return 1;
//   ZoSystem::error().warning(L"part.cpp", __LINE__, L"%d parts left out", count);
//
// Each service has a standard implementation, made by zoComDllAttach, and may have one installed
// by a client in its place. An accessor gives the installed one, else the standard one. With
// neither (before zoComDllAttach, after zoComDllDetach, or for want of memory in between) it throws
// a ZoComException that says so, whose funcName() is the accessor's. No other class of the library
// needs a service: without one they do their work, and only what the service would keep or show
// is lost.
//
// Installing: set...(service) hands the service over to the registry, destroys the one that was
// installed before, and sends ZoSysNotice::serviceChanged through the dispatcher then in force
// (which is the new one for setSysDisp). Installing the one that is installed destroys nothing.
// set...(nullptr) only takes the installed one out: it is not destroyed, belongs to the caller
// again, and no notice is sent, on purpose. Without a dispatcher nothing is sent either.
//
// Errors:  accessors as said. Setters return 0; what reactors and services throw at the notice, and
//          std::bad_alloc, reach the caller of the setter; the service is installed then all the
//          same.
// Threads: accessors any, setters none beside them: services are installed from one thread at
//          start-up.
// Cost:    an accessor reads one or two pointers.
#pragma once

#include <zo/config.h>
#include <zo/geometry/tol.h>
#include <zo/system/sys_notice.h>

class ZoCad;
class ZoCfg;
class ZoCodepage;
class ZoError;
class ZoExecute;
class ZoFileOpen;
class ZoFileSearch;
class ZoFileSystem;
class ZoLayer;
class ZoMacroLib;
class ZoMessage;
class ZoStandardMgr;
class ZoSysDisp;
class ZoSysInfo;
class ZoSysObj;
class ZoUnits;
class ZoVariant;

namespace zo {
struct ServiceSlots;
}

class ZO_COM_API ZoSystem {
 public:
  ZoSystem() = delete;

  // ---- Services, in the order of the slots, which is that of notices ----
  [[nodiscard]] static ZoCad& cad() { return inForce(s_pCad, s_pStdCad, L"cad"); }
  [[nodiscard]] static ZoCfg& cfg() { return inForce(s_pCfg, s_pStdCfg, L"cfg"); }
  [[nodiscard]] static ZoCodepage& codepage() {
    return inForce(s_pCodepage, s_pStdCodepage, L"codepage");
  }
  [[nodiscard]] static ZoError& error() { return inForce(s_pError, s_pStdError, L"error"); }
  [[nodiscard]] static ZoExecute& execute() {
    return inForce(s_pExecute, s_pStdExecute, L"execute");
  }
  [[nodiscard]] static ZoFileSystem& fileSystem() {
    return inForce(s_pFileSystem, s_pStdFileSystem, L"fileSystem");
  }
  [[nodiscard]] static ZoFileSearch& fileSearch() {
    return inForce(s_pFileSearch, s_pStdFileSearch, L"fileSearch");
  }
  [[nodiscard]] static ZoFileOpen& fileOpen() {
    return inForce(s_pFileOpen, s_pStdFileOpen, L"fileOpen");
  }
  [[nodiscard]] static ZoLayer& layer() { return inForce(s_pLayer, s_pStdLayer, L"layer"); }
  [[nodiscard]] static ZoMacroLib& macroLib() {
    return inForce(s_pMacroLib, s_pStdMacroLib, L"macroLib");
  }
  [[nodiscard]] static ZoMessage& message() {
    return inForce(s_pMessage, s_pStdMessage, L"message");
  }
  [[nodiscard]] static ZoUnits& units() { return inForce(s_pUnits, s_pStdUnits, L"units"); }
  [[nodiscard]] static ZoStandardMgr& standardMgr() {
    return inForce(s_pStandardMgr, s_pStdStandardMgr, L"standardMgr");
  }
  [[nodiscard]] static ZoSysDisp& sysDisp() {
    return inForce(s_pSysDisp, s_pStdSysDisp, L"sysDisp");
  }
  [[nodiscard]] static ZoSysInfo& sysInfo() {
    return inForce(s_pSysInfo, s_pStdSysInfo, L"sysInfo");
  }

  static int setCad(ZoCad* service);
  static int setCfg(ZoCfg* service);
  static int setCodepage(ZoCodepage* service);
  static int setError(ZoError* service);
  static int setExecute(ZoExecute* service);
  static int setFileSystem(ZoFileSystem* service);
  static int setFileSearch(ZoFileSearch* service);
  static int setFileOpen(ZoFileOpen* service);
  static int setLayer(ZoLayer* service);
  static int setMacroLib(ZoMacroLib* service);
  static int setMessage(ZoMessage* service);
  static int setUnits(ZoUnits* service);
  static int setStandardMgr(ZoStandardMgr* service);
  static int setSysDisp(ZoSysDisp* service);
  static int setSysInfo(ZoSysInfo* service);

  // ---- The tolerance of the whole program ----
  [[nodiscard]] static const ZoTol& tolerance() noexcept { return s_tolerance; }
  // Copies the value, and sends serviceChanged with "ZoTol" for type and class. Returns 0.
  static int setTolerance(const ZoTol& tolerance);

  // ---- Life cycle, for zoComDllAttach and zoComDllDetach ----
  // Makes the standard services that are not there, the dispatcher first. One for which there is no
  // memory is left out, without a message. Returns 0.
  static int construction();
  // Destroys the standard services, the dispatcher last and with it the reactors it has. Installed
  // ones stay installed. Returns 0.
  static int destruction();

 private:
  friend class ZoStdSysDisp;
  friend struct zo::ServiceSlots;  // for code of the library, which does without a service too

  // Inline, so that an accessor costs no call.
  template <class Service>
  static Service& inForce(Service* installed, Service* standard, const wchar_t* accessor) {
    if (installed) return *installed;
    if (!standard) throwNoService(accessor);
    return *standard;
  }
  [[noreturn]] static void throwNoService(const wchar_t* accessor);

  // The registry's share of a delivery: tells the services, and lets those of a released module go.
  static void sendNotice(ZoSysNotice notice, const ZoVariant& data);

  static ZoCad *s_pCad, *s_pStdCad;
  static ZoCfg *s_pCfg, *s_pStdCfg;
  static ZoCodepage *s_pCodepage, *s_pStdCodepage;
  static ZoError *s_pError, *s_pStdError;
  static ZoExecute *s_pExecute, *s_pStdExecute;
  static ZoFileSystem *s_pFileSystem, *s_pStdFileSystem;
  static ZoFileSearch *s_pFileSearch, *s_pStdFileSearch;
  static ZoFileOpen *s_pFileOpen, *s_pStdFileOpen;
  static ZoLayer *s_pLayer, *s_pStdLayer;
  static ZoMacroLib *s_pMacroLib, *s_pStdMacroLib;
  static ZoMessage *s_pMessage, *s_pStdMessage;
  static ZoUnits *s_pUnits, *s_pStdUnits;
  static ZoStandardMgr *s_pStandardMgr, *s_pStdStandardMgr;
  static ZoSysDisp *s_pSysDisp, *s_pStdSysDisp;
  static ZoSysInfo *s_pSysInfo, *s_pStdSysInfo;

  static ZoTol s_tolerance;
};
