// A lock for what many threads read and one changes now and then, held for moments only: the
// platform's own, which needs no memory (a std::shared_mutex does at its first lock).
//
//   const std::shared_lock reading(lock_);    // or std::unique_lock to change
#pragma once

#include <windows.h>

namespace zo {

class SharedLock {
 public:
  SharedLock() = default;
  SharedLock(const SharedLock&) = delete;
  SharedLock& operator=(const SharedLock&) = delete;
  ~SharedLock() = default;

  void lock() noexcept { AcquireSRWLockExclusive(&lock_); }
  void unlock() noexcept { ReleaseSRWLockExclusive(&lock_); }
  void lock_shared() noexcept { AcquireSRWLockShared(&lock_); }
  void unlock_shared() noexcept { ReleaseSRWLockShared(&lock_); }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
};

}  // namespace zo
