// The notice dispatcher: delivers notices and requests to the reactors registered with it.
//
// A delivery tells every reactor in ascending order of priority, and then, for a system notice, all
// services. It holds the dispatcher's guard as a writer, so a reactor may call the dispatcher back:
//
//   added     one that is added on the way is told if it sorts behind the one being told;
//   removed   one that is removed on the way, itself included, is not told any more;
//   further   a notice or request sent on the way is delivered whole before the first one goes on;
//   throws    the others are told all the same; then the sender gets the first exception, and the
//             dispatcher is as usable as before. A release() that throws counts as an answer to
//             stay;
//   the end   a dispatcher that is destroyed on the way (by its own release, or replaced by a
//             reactor) tells no further reactor; a system notice still reaches the services. Its
//             end destroys the very reactor that is being told or asked to go, too: that one must
//             not touch itself any more, nor destroy itself again.
//
// Errors:  0 success; 1 the guard was not obtained within timeOut(), or no such reactor; 2 out of
//          memory; 3 a null reactor. Nothing has changed then. Only what reactors and services
//          throw is thrown.
// Threads: any; another thread's call waits for a delivery at most timeOut(). A delivery calls
//          reactors in its own thread.
// Cost:    a delivery one guard acquisition and one call per reactor (and service); adding sorts.
#pragma once

#include <zo/config.h>
#include <zo/system/reactor.h>
#include <zo/system/sys_obj.h>

class ZO_COM_API ZoSysDisp : public ZoSysObj {
 public:
  // The order is part of the interface. Overloads of one name stand twice: zo/config.h.
#ifndef ZO_OVERLOADS_BACKWARDS
  // A notice with a name of the clients' own, to the custom reactors.
  [[nodiscard]] virtual int sendNotice(const wchar_t* name, const ZoVariant& data) = 0;
  // To the system reactors, and then to all services in the order of their slots
  // (ZoSysObj::onReactor). ZoSysNotice::moduleReleased has a second pass: each standard service
  // drops what it keeps of the module (poolRelease), and each installed one is asked to go
  // (release).
  [[nodiscard]] virtual int sendNotice(ZoSysNotice notice, const ZoVariant& data) = 0;
#else
  [[nodiscard]] virtual int sendNotice(ZoSysNotice notice, const ZoVariant& data) = 0;
  [[nodiscard]] virtual int sendNotice(const wchar_t* name, const ZoVariant& data) = 0;
#endif
  // As the second, by the bare number; without it, 0 would be taken for a name.
  [[nodiscard]] int sendNotice(int notice, const ZoVariant& data) {
    return sendNotice(ZoSysNotice{notice}, data);
  }
  // To the custom reactors, which may answer in the data.
  [[nodiscard]] virtual int sendRequest(const wchar_t* name, ZoVariant& data) = 0;

  // addReactor registers a reactor, which the dispatcher then owns. One that is added twice is told
  // twice. removeReactor takes the first registration back, and hands the reactor to the caller.
#ifndef ZO_OVERLOADS_BACKWARDS
  [[nodiscard]] virtual int addReactor(ZoCustomReactor* reactor) = 0;
  [[nodiscard]] virtual int addReactor(ZoSystemReactor* reactor) = 0;
  [[nodiscard]] virtual int removeReactor(ZoCustomReactor* reactor) = 0;
  [[nodiscard]] virtual int removeReactor(ZoSystemReactor* reactor) = 0;
#else
  [[nodiscard]] virtual int addReactor(ZoSystemReactor* reactor) = 0;
  [[nodiscard]] virtual int addReactor(ZoCustomReactor* reactor) = 0;
  [[nodiscard]] virtual int removeReactor(ZoSystemReactor* reactor) = 0;
  [[nodiscard]] virtual int removeReactor(ZoCustomReactor* reactor) = 0;
#endif
};
