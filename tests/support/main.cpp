// The main function of every test program, and of the children that tests start.
#include <gtest/gtest.h>

#include <optional>

#include "support/child_process.h"
#include "support/crash_report.h"
#include "support/guarded_heap.h"
#include "support/test_main.h"

int main(int argc, char** argv) {
  zo::test::installCrashReports();
  zo::test::startWatchdog();
  std::optional<int> code = zo::test::runAsChild();
  if (!code) {
    testing::InitGoogleTest(&argc, argv);
    // The first trace starts a thread of GoogleTest's that keeps a block; no test shall be blamed.
    if (zo::test::guardedHeapActive()) SCOPED_TRACE("warm-up");
    zo::test::startGuarding();
    code = zo::test::runAllTests();
  }
  zo::test::checkHeapAtEnd();
  return *code;
}
