// A lock that its owner may take again, there from the start of the process: it needs no making, no
// memory and no end.
//
//   const std::lock_guard lock(recursiveLock);
#pragma once

#include <windows.h>

#include <atomic>

#include "platform/shared_lock.h"

namespace zo {

class RecursiveLock {
 public:
  void lock() noexcept {
    const DWORD self = GetCurrentThreadId();
    if (owner_.load(std::memory_order_relaxed) != self) {  // only this thread writes its own number
      lock_.lock();
      owner_.store(self, std::memory_order_relaxed);
    }
    ++depth_;
  }
  void unlock() noexcept {
    if (--depth_) return;
    owner_.store(0, std::memory_order_relaxed);
    lock_.unlock();
  }

 private:
  SharedLock lock_;
  std::atomic<DWORD> owner_ = 0;  // no thread has the number 0
  unsigned int depth_ = 0;
};

}  // namespace zo
