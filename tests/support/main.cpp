// The main function of every test program, and of the children that tests start.
#include <gtest/gtest.h>

#include "support/exit_codes.h"
#include "support/guarded_heap.h"
#include "support/test_main.h"

int zo::test::codeAfterLeakCheck(int code, std::uint64_t mark) {
  return !code && reportLeaks(mark) ? kExitLeak : code;
}

int main(int argc, char** argv) {
  zo::test::installCrashReports();
  zo::test::startWatchdog();
  if (const std::optional<int> code = zo::test::runAsChild()) return *code;
  testing::InitGoogleTest(&argc, argv);
  // The first trace starts a thread of GoogleTest's that keeps a block; no test shall be blamed.
  {
    SCOPED_TRACE("warm-up");
  }
  const std::uint64_t mark = zo::test::allocationMark();
  const int code = RUN_ALL_TESTS();
  return zo::test::codeAfterLeakCheck(code, mark);
}
