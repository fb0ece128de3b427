// The common controls of version 6, which draw in the user's theme and have task dialogs. A program
// asks for them in its manifest; a DLL in a program without one asks for them here, as long as a
// scope lasts. Where the platform has no such version, the scope does nothing.
#pragma once

#include <windows.h>

namespace zo {

class CommonControls {
 public:
  CommonControls() noexcept;
  ~CommonControls() {
    if (active_) DeactivateActCtx(0, cookie_);
  }
  CommonControls(const CommonControls&) = delete;
  CommonControls& operator=(const CommonControls&) = delete;

  // A function of theirs, null where there is none.
  template <class Function>
  [[nodiscard]] Function* find(const char* name) const noexcept {
    return reinterpret_cast<Function*>(address(name));
  }

 private:
  [[nodiscard]] static void* address(const char* name) noexcept;

  ULONG_PTR cookie_ = 0;
  bool active_ = false;
};

}  // namespace zo
