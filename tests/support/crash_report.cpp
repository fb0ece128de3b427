#include <windows.h>

#include <csignal>
#include <cstdlib>
#include <exception>

#include "support/exit_codes.h"
#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"
#include "support/test_main.h"

namespace zo::test {

namespace {

LONG WINAPI onException(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  // A C++ exception that nobody catches: let the throw return, it calls std::terminate.
  constexpr DWORD kGccException = 0x20474343;
  if (record.ExceptionCode == kGccException) return EXCEPTION_CONTINUE_EXECUTION;

  rawPrint("crash: exception %08lx in thread %lu at %s\n", record.ExceptionCode,
           GetCurrentThreadId(), PlaceText(record.ExceptionAddress).text);
  if (record.ExceptionCode == EXCEPTION_ILLEGAL_INSTRUCTION) {
    rawPrint("  undefined behaviour, if this is a guarded build\n");
    endProcess(kExitTrap);
  }
  if (record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION) endProcess(kExitException);
  const auto kind = record.ExceptionInformation[0];
  const auto* address = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
  rawPrint("  %s %p\n", kind == 0 ? "reading" : kind == 1 ? "writing" : "executing", address);
  printBlockAround(address);
  endProcess(kExitAccess);
}

[[noreturn]] void onTerminate() {
  try {
    if (const std::exception_ptr exception = std::current_exception())
      std::rethrow_exception(exception);
    rawPrint("crash: std::terminate\n");
  } catch (const std::exception& e) {
    rawPrint("crash: std::terminate with an exception: %s\n", e.what());
  } catch (...) {
    rawPrint("crash: std::terminate with an exception that is no std::exception\n");
  }
  endProcess(kExitTerminate);
}

void onAbort(int) {
  rawPrint("crash: abort\n");
  endProcess(kExitTerminate);
}

// ms; who asks for long loops may wait for them
const DWORD kPatience = std::getenv("ZO_TEST_LONG") ? INFINITE : 240'000;

DWORD WINAPI watch(void* mainThread) {
  if (WaitForSingleObject(mainThread, kPatience) == WAIT_OBJECT_0) {
    // An ordinary end stops this thread first. Who is killed from outside loses one thread after
    // the other, and may get here before its own turn: then the process has its exit code already.
    DWORD code = STILL_ACTIVE;
    if (GetExitCodeProcess(GetCurrentProcess(), &code) && code != STILL_ACTIVE) return 0;
    // Under Wine a stack overflow can kill a thread without any exception.
    rawPrint("crash: the main thread is gone, probably by a stack overflow\n");
    endProcess(kExitException);
  }
  rawPrint("watchdog: the program still runs after %lu ms\n", kPatience);
  endProcess(kExitHung);
}

}  // namespace

void installCrashReports() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  _set_error_mode(_OUT_TO_STDERR);
  ULONG stackForReports = 131072;  // what a stack overflow leaves for onException
  SetThreadStackGuarantee(&stackForReports);
  SetUnhandledExceptionFilter(onException);
  std::set_terminate(onTerminate);
  std::signal(SIGABRT, onAbort);
}

void startWatchdog() {
  const HANDLE self = GetCurrentProcess();
  HANDLE mainThread = nullptr;
  DuplicateHandle(self, GetCurrentThread(), self, &mainThread, SYNCHRONIZE, FALSE, 0);
  // A bare thread: the runtime's threads would allocate.
  CloseHandle(
      CreateThread(nullptr, 65536, watch, mainThread, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
}

}  // namespace zo::test
