// What main does around GoogleTest, for programs and child entries that run tests.
#pragma once

namespace zo::test {

// Runs the tests that GoogleTest has been initialised for. In guarded mode a test that leaks fails,
// with the places of the allocations; so does the run for leaks between the tests, with kExitLeak.
// Returns the exit code.
int runAllTests();

// The exit code of a program that would end with `code`: a success with leaks after the mark ends
// with kExitLeak.
int codeAfterLeakCheck(int code, unsigned long long mark);

}  // namespace zo::test
