// Ctrl-C, Ctrl-Break, a closed terminal, and the signals that stand for them: the work that is
// under way ends at its next step and leaves everything valid. A second time ends the program at
// once, which a library survives as well.
#pragma once

namespace zolib {

void watchForCancel();
[[nodiscard]] bool isCancelled() noexcept;
// Does what these do.
void cancelNow() noexcept;

}  // namespace zolib
