#include "cancel.h"

#include <windows.h>

#include <atomic>

#include "exit_code.h"

namespace zolib {
namespace {

std::atomic<bool> s_cancelled = false;

BOOL WINAPI onEvent(DWORD) {
  cancelNow();
  return TRUE;
}

}  // namespace

void watchForCancel() { SetConsoleCtrlHandler(onEvent, TRUE); }

void cancelNow() noexcept {
  if (s_cancelled.exchange(true)) TerminateProcess(GetCurrentProcess(), kCancelled);
}

bool isCancelled() noexcept { return s_cancelled; }

}  // namespace zolib
