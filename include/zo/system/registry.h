// The registry of the fifteen services, through which the library and its clients reach whatever
// depends on their surroundings.
//
//   ZoSystem::error().warning(L"part.cpp", __LINE__, L"%d parts left out", count);
//
// Each service has a standard implementation, made by zoComDllAttach, and may have one installed
// by a client in its place. An accessor gives the installed one, else the standard one; before
// zoComDllAttach, after zoComDllDetach, and for a standard service for which there was no memory,
// it must not be used.
//
// Installing: set...(service) hands the service over to the registry, destroys the one that was
// installed before, and sends ZoSysNotice::serviceChanged through the dispatcher then in force
// (which is the new one for setSysDisp). Installing the one that is installed destroys nothing.
// set...(nullptr) only takes the installed one out: it is not destroyed, belongs to the caller
// again, and no notice is sent, on purpose. Without a dispatcher nothing is sent either.
//
// Errors:  setters return 0. What reactors and services throw at the notice, and std::bad_alloc,
//          reach the caller of the setter; the service is installed then all the same.
// Threads: accessors any, setters none beside them: services are installed from one thread at
//          start-up.
// Cost:    an accessor reads two pointers.
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

class ZO_COM_API ZoSystem {
 public:
  ZoSystem() = delete;

  // ---- Services, in the order of the slots, which is that of notices ----
  [[nodiscard]] static ZoCad& cad() noexcept { return *(s_pCad ? s_pCad : s_pStdCad); }
  [[nodiscard]] static ZoCfg& cfg() noexcept { return *(s_pCfg ? s_pCfg : s_pStdCfg); }
  [[nodiscard]] static ZoCodepage& codepage() noexcept {
    return *(s_pCodepage ? s_pCodepage : s_pStdCodepage);
  }
  [[nodiscard]] static ZoError& error() noexcept { return *(s_pError ? s_pError : s_pStdError); }
  [[nodiscard]] static ZoExecute& execute() noexcept {
    return *(s_pExecute ? s_pExecute : s_pStdExecute);
  }
  [[nodiscard]] static ZoFileSystem& fileSystem() noexcept {
    return *(s_pFileSystem ? s_pFileSystem : s_pStdFileSystem);
  }
  [[nodiscard]] static ZoFileSearch& fileSearch() noexcept {
    return *(s_pFileSearch ? s_pFileSearch : s_pStdFileSearch);
  }
  [[nodiscard]] static ZoFileOpen& fileOpen() noexcept {
    return *(s_pFileOpen ? s_pFileOpen : s_pStdFileOpen);
  }
  [[nodiscard]] static ZoLayer& layer() noexcept { return *(s_pLayer ? s_pLayer : s_pStdLayer); }
  [[nodiscard]] static ZoMacroLib& macroLib() noexcept {
    return *(s_pMacroLib ? s_pMacroLib : s_pStdMacroLib);
  }
  [[nodiscard]] static ZoMessage& message() noexcept {
    return *(s_pMessage ? s_pMessage : s_pStdMessage);
  }
  [[nodiscard]] static ZoUnits& units() noexcept { return *(s_pUnits ? s_pUnits : s_pStdUnits); }
  [[nodiscard]] static ZoStandardMgr& standardMgr() noexcept {
    return *(s_pStandardMgr ? s_pStandardMgr : s_pStdStandardMgr);
  }
  [[nodiscard]] static ZoSysDisp& sysDisp() noexcept {
    return *(s_pSysDisp ? s_pSysDisp : s_pStdSysDisp);
  }
  [[nodiscard]] static ZoSysInfo& sysInfo() noexcept {
    return *(s_pSysInfo ? s_pSysInfo : s_pStdSysInfo);
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
  friend class ZoComException;  // reports without an error service too
  friend class ZoStdSysDisp;

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
