// How a long call reports that it goes on, and learns that it shall not.
#pragma once

#include <zo/library/library.h>

#include <algorithm>
#include <optional>

#include "library/files_lock.h"

namespace zo {

// Who watches the calls on a library, and whether the last one was cancelled.
struct Watch {
  ZoLibrary::Watcher watcher;
  bool isCancelled = false;
  bool isShared = true;  // by threads: under the process-wide lock
};

// Of one call. One that does not hold the lock takes it for a moment to tell a shared watcher.
class Progress {
 public:
  Progress() = default;  // that nobody watches
  Progress(Watch& watch, std::uint64_t total) : watch_(&watch), total_(total) {
    watch.isCancelled = false;
  }

  // False when the call is cancelled.
  [[nodiscard]] bool add(std::uint64_t bytes) {
    done_ = std::min(done_ + bytes, total_);
    if (watch_ && !isCancelled_) tell();
    return !isCancelled_;
  }
  [[nodiscard]] bool begin() { return add(0); }
  [[nodiscard]] bool goesOn() { return add(0); }
  // The rest at once, where the total was an estimate.
  [[nodiscard]] bool finish() { return done_ == total_ ? !isCancelled_ : add(total_ - done_); }
  [[nodiscard]] bool isCancelled() const { return isCancelled_; }

 private:
  void tell() {
    std::optional<FilesLock> lock;
    if (watch_->isShared) lock.emplace();
    try {
      isCancelled_ = watch_->watcher && !watch_->watcher(done_, total_);
    } catch (...) {  // it must not pass through the codecs
      isCancelled_ = true;
    }
    if (isCancelled_) watch_->isCancelled = true;
  }

  Watch* watch_ = nullptr;
  std::uint64_t done_ = 0, total_ = 0;
  bool isCancelled_ = false;
};

}  // namespace zo
