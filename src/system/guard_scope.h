// Holds one side of a guard for as long as a scope lasts:
//
//   if (zo::ReadScope reading{guard_, time}) return find(key);
//   return ZoResult::refused;
//
// True means held, also when the holder before ended in it (result() tells). A moved-from scope
// holds nothing.
//
// Errors:  none but the wait's own; nothing throws.
// Threads: a WriteScope ends on the thread that began it.
#pragma once

#include <zo/system/guard.h>

#include <utility>

namespace zo {

template <auto wait, auto done>
class GuardScope {
 public:
  // Waits at most `timeOut` milliseconds. The guard outlives the scope.
  [[nodiscard]] GuardScope(ZoSingleWriterMultiReaderGuard& guard, unsigned long timeOut) noexcept
      : result_(wait(&guard, timeOut)), held_(ZoWait::holds(result_) ? &guard : nullptr) {}
  GuardScope(GuardScope&& other) noexcept
      : result_(other.result_), held_(std::exchange(other.held_, nullptr)) {}
  GuardScope& operator=(GuardScope&&) = delete;
  ~GuardScope() {
    if (held_) done(held_);
  }

  explicit operator bool() const noexcept { return held_ != nullptr; }
  // What the wait answered, a ZoWait code.
  [[nodiscard]] unsigned long result() const noexcept { return result_; }

 private:
  unsigned long result_;
  ZoSingleWriterMultiReaderGuard* held_;
};

using ReadScope = GuardScope<zoSWMRGWaitToRead, zoSWMRGDoneReading>;
using WriteScope = GuardScope<zoSWMRGWaitToWrite, zoSWMRGDoneWriting>;

}  // namespace zo
