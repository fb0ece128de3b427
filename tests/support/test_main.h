// What main arranges around tests and children.
#pragma once

#include <cstdint>
#include <optional>

namespace zo::test {

// Access violations, other system exceptions, std::terminate and abort say where they happened and
// end with a code of exit_codes.h, without a dialog and without a debugger being started.
void installCrashReports();

// Ends the process with kExitHung after four minutes, and with kExitException when the calling
// thread, the main one, ends before the process does.
void startWatchdog();

// The result of the child that the command line names; nothing when it names none.
std::optional<int> runAsChild();

// The exit code of a program that would end with `code`: a success with leaks after the mark ends
// with kExitLeak.
int codeAfterLeakCheck(int code, std::uint64_t mark);

}  // namespace zo::test
