// The file search service: finds a file that is not where its name says, over search paths that
// modules add.
//
// Errors:  0 success; 1 not found, a folder that is not there or was added before, or the guard was
//          not obtained within timeOut(); 2 out of memory. Nothing has changed then, and what was
//          to be filled stays as it was.
// Threads: any.
#pragma once

#include <zo/system/sys_obj.h>

class ZoFileName;

class ZO_COM_API ZoFileSearch : public ZoSysObj {
 public:
  // Adds a folder behind those added before, until the module is released.
  [[nodiscard]] virtual int addPath(const ZoFileName& folder, const wchar_t* module) = 0;
  // The full name of the file: where its name says, or else, for a relative name, in the first of
  // the folders that has it.
  [[nodiscard]] virtual int find(const ZoFileName& name, ZoFileName& found) = 0;
};
