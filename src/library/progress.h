// How a long call reports that it goes on, and learns that it shall not.
#pragma once

#include <zo/library/library.h>

#include <algorithm>

namespace zo {

// Who watches the calls on a library, and whether the last one was cancelled.
struct Watch {
  ZoLibrary::Watcher watcher;
  bool isCancelled = false;
};

class Progress {
 public:
  Progress() = default;  // that nobody watches
  Progress(Watch& watch, std::uint64_t total) : watch_(&watch), total_(total) {
    watch.isCancelled = false;
  }

  // False when the call is cancelled.
  [[nodiscard]] bool add(std::uint64_t bytes) {
    done_ = std::min(done_ + bytes, total_);
    if (!watch_) return true;
    try {
      if (!watch_->isCancelled && watch_->watcher && !watch_->watcher(done_, total_)) {
        watch_->isCancelled = true;
      }
    } catch (...) {  // it must not pass through the codecs
      watch_->isCancelled = true;
    }
    return !watch_->isCancelled;
  }
  [[nodiscard]] bool begin() { return add(0); }
  [[nodiscard]] bool goesOn() { return add(0); }
  // The rest at once, where the total was an estimate.
  [[nodiscard]] bool finish() {
    return done_ == total_ ? !watch_ || !watch_->isCancelled : add(total_ - done_);
  }

 private:
  Watch* watch_ = nullptr;
  std::uint64_t done_ = 0, total_ = 0;
};

}  // namespace zo
