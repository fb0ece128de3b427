// The fifteen slots in their fixed order: ZO_SERVICE_SLOTS(SLOT) is SLOT(Cad) SLOT(Cfg) ...
// Notices reach the services in this order.
#pragma once

#define ZO_SERVICE_SLOTS(SLOT) \
  SLOT(Cad)                    \
  SLOT(Cfg)                    \
  SLOT(Codepage)               \
  SLOT(Error)                  \
  SLOT(Execute)                \
  SLOT(FileSystem)             \
  SLOT(FileSearch)             \
  SLOT(FileOpen)               \
  SLOT(Layer)                  \
  SLOT(MacroLib)               \
  SLOT(Message)                \
  SLOT(Units)                  \
  SLOT(StandardMgr)            \
  SLOT(SysDisp)                \
  SLOT(SysInfo)
