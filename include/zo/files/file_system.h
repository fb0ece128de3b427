// The file-system service: the library's one way to directories, volumes and whole files.
//
// Of its operations only those that keep the platform's error are here yet; the others join in front
// of them, so that a client that implements this interface has to be built anew then.
//
// Errors:  as said below; nothing throws but std::bad_alloc.
// Threads: any, but there is one error for the whole process: a failure in one thread can replace
//          the one that another thread is about to ask for.
#pragma once

#include <zo/system/sys_obj.h>
#include <zo/text/string.h>

class ZO_COM_API ZoFileSystem : public ZoSysObj {
 public:
  // Called at once after a call of the platform failed: keeps the calling thread's last error, which
  // may then be asked for by errorTxt(). The operation's name is not kept. Returns 0.
  virtual int errorIO(const wchar_t* operation) = 0;
  // The system's message for the error that was kept last, in the user's language and as it comes,
  // with its line end; empty for an error without a message.
  [[nodiscard]] virtual ZoString errorTxt() = 0;
};

class ZO_COM_API ZoStdFileSystem : public ZoFileSystem {
 public:
  int release(const wchar_t* module) override;

  int errorIO(const wchar_t* operation) override;
  [[nodiscard]] ZoString errorTxt() override;
};
