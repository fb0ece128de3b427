// The base of every service: a guard of its own, and what the registry asks of a service.
//
//   int MyService::count(int& result) {
//     if (const int code = waitToRead()) return code;
//     result = count_;
//     return doneReading(ZoResult::ok);
//   }
//
// The guard is made when it is first waited for, or asked for by guard() or a copy.
//
// A copy shares its source's guard: it holds the same three handles, and no kernel objects are
// made but for a source that had none yet. Each destructor closes what its object holds, so all
// copies but one must give the handles up first (guard() = {}), and the source must outlive the use
// of them. An assignment forgets the handles of its target, without closing them.
//
// Errors:  a wait for a guard that cannot be made answers ZoResult::refused, and so does every one
//          where the handles were given up. Nothing here throws.
// Threads: what its guard does (zo/system/guard.h); a service guards its own state.
// Cost:    three kernel objects each, once used; a wait is one kernel call or more.
#pragma once

#include <zo/config.h>
#include <zo/system/guard.h>
#include <zo/system/sys_notice.h>

class ZoString;
class ZoVariant;

class ZO_COM_API ZoSysObj {
 public:
  ZoSysObj() noexcept;
  ZoSysObj(const ZoSysObj& other) noexcept : guard_(other.guardMade()) {}
  ZoSysObj& operator=(const ZoSysObj& other) noexcept {
    guard_ = other.guardMade();
    return *this;
  }

  // ---- Asked by the registry. The order of the virtual functions is part of the interface ----
  virtual ~ZoSysObj();
  // Every system notice, in the order of the slots. Does nothing here.
  virtual void onReactor(ZoSysNotice notice, const ZoVariant& data);
  // A module goes away: an installed service that belongs to it destroys itself and returns 0; any
  // other answer means that it stays. Returns 1 here. Null belongs to nobody.
  virtual int release(const wchar_t* module);
  // A module goes away: a standard service drops what it keeps from it. Does nothing here.
  virtual void poolRelease(const wchar_t* module);
  // How many milliseconds a wait for the guard lasts; -1 is without an end. 1000 here.
  virtual int timeOut();

  // ---- The guard ----
  // Wait at most timeOut() milliseconds for the guard. 0: obtained, also from a holder that ended
  // in it. ZoResult::timeOut: not in time. ZoResult::refused: this object has no guard.
  [[nodiscard]] int waitToWrite();
  [[nodiscard]] int waitToRead();

  // Each gives one wait back. A value is returned as it came, so that a guarded function can end in
  // one statement; a text must not be the guarded state itself, which another thread may now
  // change.
  void doneWriting() noexcept;
  int doneWriting(int value) noexcept;
  unsigned int doneWriting(unsigned int value) noexcept;
  double doneWriting(double value) noexcept;
  bool doneWriting(bool value) noexcept;
  const wchar_t* doneWriting(const wchar_t* value) noexcept;
  const ZoString& doneWriting(const ZoString& value) noexcept;

  void doneReading() noexcept;
  int doneReading(int value) noexcept;
  unsigned int doneReading(unsigned int value) noexcept;
  double doneReading(double value) noexcept;
  bool doneReading(bool value) noexcept;
  const wchar_t* doneReading(const wchar_t* value) noexcept;
  const ZoString& doneReading(const ZoString& value) noexcept;

 protected:
  [[nodiscard]] ZoSingleWriterMultiReaderGuard& guard() noexcept { return guardMade(); }

 private:
  [[nodiscard]] ZoSingleWriterMultiReaderGuard& guardMade() const noexcept;

  mutable ZoSingleWriterMultiReaderGuard guard_;
};

static_assert(sizeof(ZoSysObj) == sizeof(void*) + sizeof(ZoSingleWriterMultiReaderGuard));
