// The service of the host drawing's layers: names under which objects of a drawing are shown,
// hidden and coloured together.
//
// Errors:  0 success; 1 no such layer, no drawing, or the guard was not obtained in time; what was
//          to be filled then stays as it was.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>

class ZO_COM_API ZoLayer : public ZoSysObj {
 public:
  // The layer on which new objects of the current drawing lie.
  [[nodiscard]] virtual int getCurrent(ZoString& name) = 0;
  [[nodiscard]] virtual int setCurrent(const ZoString& name) = 0;
  [[nodiscard]] virtual bool exists(const ZoString& name) = 0;
};

// No host, so no drawing: there are no layers, and both operations are refused.
class ZO_COM_API ZoStdLayer : public ZoLayer {
 public:
  int release(const wchar_t* module) override;

  int getCurrent(ZoString& name) override;
  int setCurrent(const ZoString& name) override;
  [[nodiscard]] bool exists(const ZoString& name) override;
};
