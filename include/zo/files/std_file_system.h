// The standard file-system service, on the platform's file API.
//
// Errors, Threads: as in zo/system/file_system.h.
#pragma once

#include <zo/system/file_system.h>

class ZO_COM_API ZoStdFileSystem : public ZoFileSystem {
 public:
  int release(const wchar_t* module) override;

  int errorIO(const wchar_t* operation) override;
  [[nodiscard]] ZoString errorTxt() override;
};
