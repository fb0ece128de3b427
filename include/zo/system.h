// System services: life cycle, registry, notices, and the fifteen services.
//
//   if (zoComDllAttach() != 0) return 1;
//   ZoString text;
//   if (ZoSystem::units().print(12.7, ZoTypeCode::Length, text) == 0) std::wcout << text;
//   zoComDllDetach();
#pragma once

#include <zo/config.h>

#include <zo/attach/life_cycle.h>
#include <zo/files/std_file_system.h>
#include <zo/headless/headless_cad.h>
#include <zo/headless/std_layer.h>
#include <zo/headless/std_standard_mgr.h>
#include <zo/messages/std_message.h>
#include <zo/search/std_file_open.h>
#include <zo/search/std_file_search.h>
#include <zo/search/std_macro_lib.h>
#include <zo/system/cad.h>
#include <zo/system/cfg.h>
#include <zo/system/codepage.h>
#include <zo/system/dll_version.h>
#include <zo/system/err_log.h>
#include <zo/system/error.h>
#include <zo/system/exception.h>
#include <zo/system/execute.h>
#include <zo/system/file_open.h>
#include <zo/system/file_search.h>
#include <zo/system/file_system.h>
#include <zo/system/guard.h>
#include <zo/system/layer.h>
#include <zo/system/macro_lib.h>
#include <zo/system/message.h>
#include <zo/system/open_results.h>
#include <zo/system/reactor.h>
#include <zo/system/registry.h>
#include <zo/system/source_place.h>
#include <zo/system/standard_mgr.h>
#include <zo/system/std_error.h>
#include <zo/system/std_sys_disp.h>
#include <zo/system/sys_disp.h>
#include <zo/system/sys_info.h>
#include <zo/system/sys_notice.h>
#include <zo/system/sys_obj.h>
#include <zo/system/sys_str.h>
#include <zo/system/units.h>
