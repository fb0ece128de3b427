// Reactors: what a client registers with the dispatcher to be told of notices.
//
// Lower priorities are told first. The dispatcher asks priority() when a reactor is added, of all
// reactors of the kind; it should not change.
//
// Errors:  what a handler throws reaches the sender, once all others were told (sys_disp.h).
// Threads: a handler is called in the thread that sends, and one delivery at a time: others wait
//          for it. It may call the dispatcher back.
// Owned:   by the client until registered, and by it again once removed; the dispatcher's end
//          destroys what is still registered.
#pragma once

#include <zo/config.h>
#include <zo/system/sys_notice.h>

class ZoVariant;

// The order of the virtual functions is part of both interfaces.

// Hears of system notices.
class ZO_COM_API ZoSystemReactor {
 public:
  virtual ~ZoSystemReactor();
  virtual void onNotice(ZoSysNotice notice, const ZoVariant& data) = 0;
  virtual double priority() = 0;
  // A module goes away: one that belongs to it destroys itself and returns 0, and is dropped; any
  // other answer means that it stays.
  virtual int release(const wchar_t* module) = 0;

 protected:
  ZoSystemReactor() = default;
  ZoSystemReactor(const ZoSystemReactor&) = default;
  ZoSystemReactor& operator=(const ZoSystemReactor&) = default;
};

// Hears of notices and answers requests that clients name themselves.
class ZO_COM_API ZoCustomReactor {
 public:
  virtual ~ZoCustomReactor();
  virtual void onNotice(const wchar_t* name, const ZoVariant& data) = 0;
  virtual double priority() = 0;
  virtual int release(const wchar_t* module) = 0;  // as above
  // May answer by writing to the data, where those that follow find it.
  virtual void onRequest(const wchar_t* name, ZoVariant& data) = 0;

 protected:
  ZoCustomReactor() = default;
  ZoCustomReactor(const ZoCustomReactor&) = default;
  ZoCustomReactor& operator=(const ZoCustomReactor&) = default;
};
