#include "cancel.h"

#include <windows.h>

#include <atomic>

#include "exit_code.h"

namespace zolib {
namespace {

std::atomic<bool> s_cancelled = false;
std::atomic<bool> s_interruptible = false;

BOOL WINAPI onEvent(DWORD) {
  cancelNow();
  return TRUE;
}

}  // namespace

void watchForCancel() { SetConsoleCtrlHandler(onEvent, TRUE); }

void cancelNow() noexcept {
  if (s_interruptible || s_cancelled.exchange(true))
    TerminateProcess(GetCurrentProcess(), kCancelled);
}

bool isCancelled() noexcept { return s_cancelled; }

Interruptible::Interruptible() noexcept {
  s_interruptible = true;
  if (s_cancelled) TerminateProcess(GetCurrentProcess(), kCancelled);
}

Interruptible::~Interruptible() { s_interruptible = false; }

}  // namespace zolib
