// Which boxes the user does not want to see again in this process.
#pragma once

#include <atomic>

namespace zo {

struct SuppressedBoxes {
  std::atomic<bool> errors = false;
  std::atomic<bool> warnings = false;
};
extern SuppressedBoxes suppressedBoxes;

}  // namespace zo
