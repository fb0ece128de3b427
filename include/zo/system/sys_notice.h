// What happened to a module or a service, as the dispatcher tells every reactor and service.
//
// The data of a notice is a variant with a dictionary; its keys ignore case like every
// dictionary's. Other numbers than these are free for clients: the dispatcher forwards any of them
// unchanged.
//
//   constexpr ZoSysNotice kPartsChanged{1000};
//   const int code = ZoSystem::sysDisp().sendNotice(kPartsChanged, data);
#pragma once

#include <zo/config.h>

// Modules of different age exchange these numbers: never renumber.
enum ZoSysNotice : int {
  moduleLoaded = 0,     // "Module": the name. Sent by the module itself.
  moduleReleased = 1,   // "Module": the name. Sent by the module itself before it goes.
  serviceChanged = 30,  // "Type": the slot's name, as "ZoCfg"; "Class": the new object's class
};
