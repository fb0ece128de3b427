// The file open service: opens a drawing or part in the host application.
//
// Errors:  0 opened; 1 not opened, or the guard was not obtained in time.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>

class ZoFileName;

class ZO_COM_API ZoFileOpen : public ZoSysObj {
 public:
  virtual int open(const ZoFileName& file) = 0;
};

// No host, so nothing that a drawing could be opened in: every file is refused. (ZoExecute opens a
// document in whatever program the platform has for it.)
class ZO_COM_API ZoStdFileOpen : public ZoFileOpen {
 public:
  int release(const wchar_t* module) override;

  int open(const ZoFileName& file) override;
};
