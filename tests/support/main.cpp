// The main function of every test program, and of the children that tests start.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "support/child_process.h"
#include "support/crash_report.h"
#include "support/exit_codes.h"
#include "support/guarded_heap.h"
#include "support/raw_print.h"
#include "support/test_main.h"

namespace zo::test {

namespace {

// Fails the test that leaks. Tests that failed or were skipped are let off: they left their results
// in memory, and perhaps their clearing-up undone.
class LeakListener : public testing::EmptyTestEventListener {
 public:
  void OnTestStart(const testing::TestInfo&) override { mark_ = allocationMark(); }

  void OnTestEnd(const testing::TestInfo& test) override {
    if (!test.result()->Passed()) return;
    const std::string leaks = leaksSince(mark_);
    if (!leaks.empty()) ADD_FAILURE() << leaks;
  }

 private:
  std::uint64_t mark_ = 0;
};

}  // namespace

int codeAfterLeakCheck(int code, unsigned long long mark) {
  if (code || !guardedHeapActive()) return code;
  const std::string leaks = leaksSince(mark);
  if (leaks.empty()) return code;
  rawPrint("guarded heap: %s", leaks.c_str());
  return kExitLeak;
}

int runAllTests() {
  const std::uint64_t mark = allocationMark();
  if (guardedHeapActive()) {
    testing::UnitTest::GetInstance()->listeners().Append(new LeakListener);  // theirs from now on
  }
  const int code = RUN_ALL_TESTS();
  return codeAfterLeakCheck(code, mark);
}

}  // namespace zo::test

int main(int argc, char** argv) {
  zo::test::installCrashReports();
  zo::test::startWatchdog();
  if (const std::optional<int> code = zo::test::runAsChild()) return *code;
  testing::InitGoogleTest(&argc, argv);
  // The first trace starts a thread of GoogleTest's that keeps a block; no test shall be blamed.
  if (zo::test::guardedHeapActive()) SCOPED_TRACE("warm-up");
  return zo::test::runAllTests();
}
