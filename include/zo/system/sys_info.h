// The system information service: who uses the machine, what it runs, and where things lie, all
// asked of the platform at the moment of the call.
//
// Errors:  0, or ZoResult::refused when the platform does not say; the out-parameter is then as it
//          was.
// Threads: any. The service has no state of its own, so that its guard is never waited for.
// Cost:    one or a few calls of the platform each; nothing is kept.
#pragma once

#include <zo/system/sys_obj.h>
#include <zo/text/string.h>

// The version of an operating system as it names itself: 10.0 build 22631.
struct ZoSysVersion {
  unsigned int major = 0;
  unsigned int minor = 0;
  unsigned int build = 0;
};

class ZO_COM_API ZoSysInfo : public ZoSysObj {
 public:
  // Folders are absolute, without a delimiter at the end unless they are a drive's root.
  enum Folder : int {
    kWindows,       // of the operating system
    kSystem,        // of its DLLs
    kTemporary,     // the user's, for files that may vanish
    kCurrent,       // of the process
    kProgram,       // where the running program lies
    kLibrary,       // where this library's file lies
    kUserSettings,  // application data of the user that goes with the user from machine to machine
    kUserLocal,     // application data of the user on this machine
    kCommonSettings,  // application data of all users
    kUserDocuments,   // the user's documents
  };

  // The name that the user logged on with.
  [[nodiscard]] virtual int userName(ZoString& name) = 0;
  // The machine's name in the local network, in upper case; and its full name in the domain.
  [[nodiscard]] virtual int machineName(ZoString& name) = 0;
  [[nodiscard]] virtual int machineFullName(ZoString& name) = 0;
  // The user's language and region, as "de-AT".
  [[nodiscard]] virtual int localeName(ZoString& name) = 0;

  // The operating system's true version, whatever the program's manifest says.
  [[nodiscard]] virtual int systemVersion(ZoSysVersion& version) = 0;
  // The version of this library, "MAJOR.MINOR.PATCH".
  [[nodiscard]] virtual int libraryVersion(ZoString& version) = 0;
  // The version in a file's resources, as "1.2.3.4". Refused for files that have none.
  [[nodiscard]] virtual int fileVersion(const wchar_t* file, ZoString& version) = 0;

  // Processors that the process may run on, at least 1, and memory of the machine in bytes.
  [[nodiscard]] virtual int processors(unsigned int& count) = 0;
  [[nodiscard]] virtual int memory(unsigned long long& bytes) = 0;

  [[nodiscard]] virtual int folder(Folder which, ZoString& path) = 0;
  // The full paths of the running program and of this library's file.
  [[nodiscard]] virtual int programFile(ZoString& path) = 0;
  [[nodiscard]] virtual int libraryFile(ZoString& path) = 0;

  // The value of an environment variable. Refused when there is none; it may be empty.
  [[nodiscard]] virtual int environment(const wchar_t* name, ZoString& value) = 0;
};

class ZO_COM_API ZoStdSysInfo : public ZoSysInfo {
 public:
  int release(const wchar_t* module) override;

  int userName(ZoString& name) override;
  int machineName(ZoString& name) override;
  int machineFullName(ZoString& name) override;
  int localeName(ZoString& name) override;
  int systemVersion(ZoSysVersion& version) override;
  int libraryVersion(ZoString& version) override;
  int fileVersion(const wchar_t* file, ZoString& version) override;
  int processors(unsigned int& count) override;
  int memory(unsigned long long& bytes) override;
  int folder(Folder which, ZoString& path) override;
  int programFile(ZoString& path) override;
  int libraryFile(ZoString& path) override;
  int environment(const wchar_t* name, ZoString& value) override;
};
