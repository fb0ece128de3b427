// A test program that goes wrong says where and ends with a code of exit_codes.h, without a dialog
// and without a debugger being started.
#pragma once

namespace zo::test {

// Access violations, other system exceptions, std::terminate and abort.
void installCrashReports();

// Ends the process with kExitHung after ZO_TEST_TIMEOUT_MS milliseconds (default 240,000; 0: never)
// and with kExitException when the calling thread, the main one, ends before the process does.
void startWatchdog();

}  // namespace zo::test
