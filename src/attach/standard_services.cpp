// The one file that knows all standard services: it makes and destroys them.
#include <zo/files/std_file_system.h>
#include <zo/headless/std_layer.h>
#include <zo/headless/std_standard_mgr.h>
#include <zo/messages/std_message.h>
#include <zo/results.h>
#include <zo/search/std_file_open.h>
#include <zo/search/std_file_search.h>
#include <zo/search/std_macro_lib.h>
#include <zo/system/cad.h>
#include <zo/system/cfg.h>
#include <zo/system/codepage.h>
#include <zo/system/execute.h>
#include <zo/system/registry.h>
#include <zo/system/std_error.h>
#include <zo/system/std_sys_disp.h>
#include <zo/system/sys_info.h>
#include <zo/system/units.h>

#include <new>

namespace {

template <class Standard, class Service, class... Arguments>
void make(Service*& slot, Arguments... arguments) {
  if (slot) return;
  try {
    slot = new Standard(arguments...);
  } catch (const std::bad_alloc&) {
    slot = nullptr;
  }
}

// A service that ends may still be asked for by what it calls.
template <class Service>
void destroy(Service*& slot) {
  delete slot;
  slot = nullptr;
}

}  // namespace

int ZoSystem::construction() {
  make<ZoStdSysDisp>(s_pStdSysDisp);
  make<ZoStdCad>(s_pStdCad);
  make<ZoStdCfg>(s_pStdCfg);
  make<ZoStdCodepage>(s_pStdCodepage);
  make<ZoStdError>(s_pStdError);
  make<ZoStdExecute>(s_pStdExecute);
  make<ZoStdFileSystem>(s_pStdFileSystem);
  make<ZoStdFileSearch>(s_pStdFileSearch);
  make<ZoStdFileOpen>(s_pStdFileOpen);
  make<ZoStdLayer>(s_pStdLayer);
  make<ZoStdMacroLib>(s_pStdMacroLib);
  make<ZoStdMessage>(s_pStdMessage);
  make<ZoStdUnits>(s_pStdUnits, L'.', L'\0');
  make<ZoStdStandardMgr>(s_pStdStandardMgr);
  make<ZoStdSysInfo>(s_pStdSysInfo);
  return ZoResult::ok;
}

int ZoSystem::destruction() {
  destroy(s_pStdCad);
  destroy(s_pStdCfg);
  destroy(s_pStdCodepage);
  destroy(s_pStdError);
  destroy(s_pStdExecute);
  destroy(s_pStdFileSystem);
  destroy(s_pStdFileSearch);
  destroy(s_pStdFileOpen);
  destroy(s_pStdLayer);
  destroy(s_pStdMacroLib);
  destroy(s_pStdMessage);
  destroy(s_pStdUnits);
  destroy(s_pStdStandardMgr);
  destroy(s_pStdSysInfo);
  destroy(s_pStdSysDisp);
  return ZoResult::ok;
}
