// Ctrl-C, Ctrl-Break, a closed terminal, and the signals that stand for them: the work that is
// under way ends at its next step and leaves everything valid. A second time ends the program at
// once, which a library survives as well.
#pragma once

namespace zolib {

void watchForCancel();
[[nodiscard]] bool isCancelled() noexcept;
// Does what these do.
void cancelNow() noexcept;

// While one stands, nothing is under way that has to end well (standard input is waited for): the
// program then ends at once.
class Interruptible {
 public:
  Interruptible() noexcept;
  Interruptible(const Interruptible&) = delete;
  Interruptible& operator=(const Interruptible&) = delete;
  ~Interruptible();
};

}  // namespace zolib
