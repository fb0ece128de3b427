// The standards manager: engineering standards of the host's catalogues ("ISO 4014") as
// dictionaries of code ZoTypeCode::Standard.
//
// Errors:  0 success; 1 no such standard, or the guard was not obtained in time; the value then
//          stays as it was.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>

class ZO_COM_API ZoStandardMgr : public ZoSysObj {
 public:
  [[nodiscard]] virtual int getStandard(const ZoString& name, ZoVariant& standard) = 0;
};

// No host, so no catalogues: every standard is unknown.
class ZO_COM_API ZoStdStandardMgr : public ZoStandardMgr {
 public:
  int release(const wchar_t* module) override;

  int getStandard(const ZoString& name, ZoVariant& standard) override;
};
