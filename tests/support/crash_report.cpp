#include "support/crash_report.h"

#include <windows.h>

#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <exception>

#include "support/exit_codes.h"
#include "support/guarded_heap_engine.h"
#include "support/raw_print.h"

namespace zo::test {

namespace {

int exitCodeOf(DWORD exception) {
  switch (exception) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_IN_PAGE_ERROR:
      return kExitAccess;
    case EXCEPTION_ILLEGAL_INSTRUCTION:
      return kExitTrap;
    default:
      return kExitException;
  }
}

void printAccess(const EXCEPTION_RECORD& record) {
  const auto kind = record.ExceptionInformation[0];
  const auto* address = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
  rawPrint("  %s %p\n", kind == 0 ? "reading" : kind == 1 ? "writing" : "executing", address);
  printBlockAround(address);
}

LONG WINAPI onException(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  // A C++ exception that nobody catches: let the throw return, it calls std::terminate.
  constexpr DWORD kGccException = 0x20474343;
  if (record.ExceptionCode == kGccException) return EXCEPTION_CONTINUE_EXECUTION;

  rawPrint("crash: exception %08lx in thread %lu at %s\n", record.ExceptionCode,
           GetCurrentThreadId(), PlaceText(record.ExceptionAddress).text);
  const int code = exitCodeOf(record.ExceptionCode);
  if (code == kExitAccess && record.NumberParameters >= 2) printAccess(record);
  if (code == kExitTrap) rawPrint("  undefined behaviour, if this is a guarded build\n");
  endProcess(code);
}

[[noreturn]] void onTerminate() {
  if (const std::exception_ptr exception = std::current_exception()) {
    try {
      std::rethrow_exception(exception);
    } catch (const std::exception& e) {
      rawPrint("crash: std::terminate with an exception: %s\n", e.what());
    } catch (...) {
      rawPrint("crash: std::terminate with an exception that is no std::exception\n");
    }
  } else {
    rawPrint("crash: std::terminate\n");
  }
  endProcess(kExitTerminate);
}

void onAbort(int) {
  rawPrint("crash: abort\n");
  endProcess(kExitTerminate);
}

struct {
  HANDLE mainThread;
  DWORD patience;
} watched;

DWORD WINAPI watch(void*) {
  if (WaitForSingleObject(watched.mainThread, watched.patience) == WAIT_OBJECT_0) {
    // An ordinary end stops this thread first. Under Wine a stack overflow can kill a thread
    // without any exception.
    rawPrint("crash: the main thread is gone, probably by a stack overflow\n");
    endProcess(kExitException);
  }
  rawPrint("watchdog: the program still runs after %lu ms\n", watched.patience);
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
  constexpr unsigned long kPatience = 240000;
  wchar_t text[32];
  const DWORD length = GetEnvironmentVariableW(L"ZO_TEST_TIMEOUT_MS", text, 32);
  watched.patience = length && length < 32 ? std::wcstoul(text, nullptr, 10) : kPatience;
  if (!watched.patience) watched.patience = INFINITE;
  HANDLE self = GetCurrentProcess();
  if (!DuplicateHandle(self, GetCurrentThread(), self, &watched.mainThread, SYNCHRONIZE, FALSE,
                       0)) {
    return;
  }
  // A bare thread: the runtime's threads would allocate.
  if (HANDLE thread = CreateThread(nullptr, 65536, watch, nullptr,
                                   STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr)) {
    CloseHandle(thread);
  }
}

}  // namespace zo::test
