// How zolib ends. Scripts rely on the numbers.
#pragma once

namespace zolib {

enum ExitCode : int {
  kOk = 0,
  kWarnings = 1,  // done, but something was left out by a rule
  kFailed = 2,    // something that was asked for could not be done
  kUsage = 7,
  kNotFound = 10,  // the library, a file, or a member that was named
  kLocked = 11,    // another writer has the library
  kNotALibrary = 12,
  kDamaged = 13,
  kCancelled = 130,
};

// The one of two that says more: a cancelled or damaged end hides a mere failure, a failure hides
// what was not found, and everything hides a warning.
constexpr ExitCode graver(ExitCode a, ExitCode b) noexcept {
  constexpr ExitCode kOrder[] = {kCancelled, kDamaged, kNotALibrary, kLocked,
                                 kUsage,     kFailed,  kNotFound,    kWarnings};
  for (const ExitCode code : kOrder) {
    if (a == code || b == code) return code;
  }
  return kOk;
}

}  // namespace zolib
