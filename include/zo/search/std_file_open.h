// The standard file open service. Without a host there is nothing that a drawing could be opened
// in: every file is refused. (ZoExecute opens a document in whatever program the platform has for
// it.)
//
// Errors, Threads: as in zo/system/file_open.h.
#pragma once

#include <zo/system/file_open.h>

class ZO_COM_API ZoStdFileOpen : public ZoFileOpen {
 public:
  int release(const wchar_t* module) override;

  int open(const ZoFileName& file) override;
};
