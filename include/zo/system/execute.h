// The execute service: starts programs and opens documents.
//
// Errors:  0 started; 1 refused, or the guard was not obtained within timeOut(); otherwise a code
//          of ZoExecute. Only what a client's implementation throws is thrown.
// Threads: any; calls wait for one another at most timeOut().
#pragma once

#include <zo/system/sys_obj.h>

class ZoFileName;

class ZO_COM_API ZoExecute : public ZoSysObj {
 public:
  // Why the shell did not start it.
  enum Failure : int {
    kFileNotFound = 1000,
    kPathNotFound = 1001,
    kBadFormat = 1002,  // no program that this system runs
    kAccessDenied = 1003,
    kAssociationIncomplete = 1004,
    kDdeBusy = 1005,
    kDdeFailed = 1006,
    kDdeTimeOut = 1007,
    kLibraryNotFound = 1008,
    kNoAssociation = 1010,
    kOutOfMemory = 1011,
    kSharingViolation = 1013
  };

  // The order is part of the interface. `arguments` may be null; `show` is a show command of the
  // platform (SW_...).
  //
  // By process(), and where that refuses by shell().
  [[nodiscard]] virtual int automatic(const ZoFileName& file, const wchar_t* arguments, int show,
                                      bool option) = 0;
  // As a process of one's own. What `option` selects is the implementation's matter.
  [[nodiscard]] virtual int process(const ZoFileName& file, const wchar_t* arguments, int show,
                                    bool option) = 0;
  // By the platform's shell, which also knows what opens a document.
  [[nodiscard]] virtual int shell(const ZoFileName& file, const wchar_t* arguments, int show) = 0;

 protected:
  // The code for what ShellExecuteW answered. Takes the guard, which the caller may hold.
  [[nodiscard]] virtual int convertErr(int result);
};

// Opens everything by the shell: process() refuses, and automatic() gives what shell() gives.
class ZO_COM_API ZoStdExecute : public ZoExecute {
 public:
  // Stays whatever module is released, unlike the other standard services.
  int release(const wchar_t* module) override;

  int automatic(const ZoFileName& file, const wchar_t* arguments, int show, bool option) override;
  int process(const ZoFileName& file, const wchar_t* arguments, int show, bool option) override;
  // Verb "open", no working directory, owned by the calling thread's active window. A `show` of 0
  // (SW_HIDE) counts as 1: nothing is started hidden.
  int shell(const ZoFileName& file, const wchar_t* arguments, int show) override;
};
