// The service of the host's macro libraries: names that stand for folders, as in the file name
// $standards'bolts\m8.dwg.
//
// Errors:  0 success; 1 no such macro, or the guard was not obtained in time; the value then stays
//          as it was.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>

class ZO_COM_API ZoMacroLib : public ZoSysObj {
 public:
  // The text that a macro stands for.
  [[nodiscard]] virtual int getMacro(const ZoString& name, ZoString& value) = 0;
};

// No host, so no macro libraries: every macro is unknown.
class ZO_COM_API ZoStdMacroLib : public ZoMacroLib {
 public:
  int release(const wchar_t* module) override;

  int getMacro(const ZoString& name, ZoString& value) override;
};
