// The file open service: opens a drawing or part in the host application.
//
// Errors:  0 opened; 1 not opened, or the guard was not obtained in time.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>

class ZoFileName;

class ZO_COM_API ZoFileOpen : public ZoSysObj {
 public:
  [[nodiscard]] virtual int open(const ZoFileName& file) = 0;
};
