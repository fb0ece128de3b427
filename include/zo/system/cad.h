// The host application's service, and what modules keep for each drawing.
//
// The host's own operations join this interface with the modules that need them. What every module
// needs from the start is here: globals of a drawing, registered, looked up and taken back by name.
// A module registers its globals once per drawing and finds them by name from then on.
//
// Errors:  0 success; 1 refused: the guard was not obtained within timeOut(), null, a name that is
//          taken or not there; 2 out of memory. Nothing has changed then. Only std::bad_alloc and
//          what the globals throw is thrown.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/text_keys.h>
#include <zo/text/string.h>

class ZO_COM_API ZoDwgGlobals {
 public:
  virtual ~ZoDwgGlobals();
  // Case does not count. It must not change while registered.
  [[nodiscard]] virtual ZoString name() = 0;
  // A module goes away: globals that belong to it destroy themselves and return 0, and are dropped;
  // any other answer means that they stay.
  virtual int release(const wchar_t* module) = 0;

 protected:
  ZoDwgGlobals() = default;
  ZoDwgGlobals(const ZoDwgGlobals&) = default;
  ZoDwgGlobals& operator=(const ZoDwgGlobals&) = default;
};

class ZO_COM_API ZoCad : public ZoSysObj {
 public:
  // Whether a host application is there.
  [[nodiscard]] virtual bool isPresent() = 0;

  // All three are about the current drawing. Hands the globals to the service, which destroys what
  // is still registered when the drawing, or the service, ends.
  [[nodiscard]] virtual int registerGlobals(ZoDwgGlobals* globals) = 0;
  // Null when there are none of that name. Valid until they are unregistered.
  [[nodiscard]] virtual ZoDwgGlobals* dwgGlobals(const ZoString& name) = 0;
  // Hands the globals back to the caller.
  [[nodiscard]] virtual int unregisterGlobals(const ZoString& name) = 0;
};

// No host: isPresent() is false, and all globals belong to one drawing, which is never closed.
// poolRelease(module) asks all globals to go and drops those that do; null asks none.
class ZO_COM_API ZoStdCad : public ZoCad {
 public:
  ZoStdCad() = default;
  ZoStdCad(const ZoStdCad&) = delete;  // it owns its globals
  ZoStdCad& operator=(const ZoStdCad&) = delete;
  ~ZoStdCad() override;

  // Releases the globals of the module first.
  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

  [[nodiscard]] bool isPresent() override;
  int registerGlobals(ZoDwgGlobals* globals) override;
  [[nodiscard]] ZoDwgGlobals* dwgGlobals(const ZoString& name) override;
  int unregisterGlobals(const ZoString& name) override;

 private:
  ZoHashDict<ZoDwgGlobals*, ZoString> globals_;
};
