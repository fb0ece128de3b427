// Self-checks: each fault is caught, with the exit code and the words that lead to it, and honest
// programs pass. The guarded heap works in every build, so these run in all of them.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/exit_codes.h"

namespace {

using zo::test::ChildProcess;

struct Fault {
  const wchar_t* child;
  int code;
  std::vector<const char*> words;  // all of them are in the output
};

// In the environment that the test has set.
void expectCaught(const std::vector<Fault>& faults) {
  for (const Fault& fault : faults) {
    SCOPED_TRACE(std::wstring(fault.child));
    ChildProcess process(fault.child, {}, ChildProcess::kHeard);
    std::string output;
    while (const auto line = process.hear()) output += *line + "\n";
    EXPECT_EQ(process.wait(), fault.code) << output;
    for (const char* word : fault.words)
      EXPECT_NE(output.find(word), std::string::npos) << word << "\n" << output;
  }
}

struct GuardedMode : testing::Test {
  GuardedMode() { SetEnvironmentVariableW(L"ZO_GUARDED_HEAP", L"guard"); }
};
struct EveryMode : testing::Test {
  EveryMode() { SetEnvironmentVariableW(L"ZO_GUARDED_HEAP", nullptr); }
};

}  // namespace

TEST_F(GuardedMode, OneByteTooFarIsCaughtWhereverTheBlockComesFrom) {
  const char* const past = "0 bytes past the end of the live block";
  expectCaught({{L"overrun_write", zo::test::kExitAccess, {"writing", past, "mode_tests.exe+0x"}},
                {L"overrun_read", zo::test::kExitAccess, {"reading", past, "of 10 bytes"}},
                {L"overrun_in_runtime_block", zo::test::kExitAccess, {past, "libstdc++-6.dll+0x"}},
                {L"overrun_of_calloc_and_realloc", zo::test::kExitAccess, {past, "of 10 bytes"}},
                {L"overrun_of_large_block", zo::test::kExitAccess, {past, "of 10010 bytes"}}});
}

TEST_F(GuardedMode, AFreedBlockIsOutOfReach) {
  expectCaught({{L"use_after_free_read", zo::test::kExitAccess, {"at byte 0 of the freed block"}},
                {L"use_after_free_write", zo::test::kExitAccess, {"at byte 9 of the freed block"}},
                {L"stale_pointer_after_realloc", zo::test::kExitAccess, {"the freed block"}}});
}

TEST_F(GuardedMode, WrongFreesAreReported) {
  const int damage = zo::test::kExitHeapDamage;
  expectCaught({{L"double_free", damage, {"double free", "the freed block of 10 bytes"}},
                {L"free_inside_block", damage, {"free inside", "at byte 1 of the live"}},
                {L"write_before_block", damage, {"bytes before a block", "1 bytes before"}}});
}

TEST_F(GuardedMode, LeaksFailTheProgramAndTheTestThatLeaks) {
  const char* const one = "1 blocks leaked, 10 bytes";
  expectCaught({{L"leak", zo::test::kExitLeak, {one, "mode_tests.exe+0x"}},
                {L"leaked_chain", zo::test::kExitLeak, {"2 blocks leaked, 18 bytes"}},
                {L"suite_with_leak", 1, {"[  FAILED  ] OnPurpose.Only", one}}});
}

TEST_F(GuardedMode, HonestProgramsPassAlsoPastTheLimitOfBlocks) {
  for (const wchar_t* limit : {static_cast<const wchar_t*>(nullptr), L"600", L"0"}) {
    SetEnvironmentVariableW(L"ZO_GUARDED_LIMIT", limit);
    expectCaught({{L"clean", 0, {}}, {L"long_run", 0, {}}});
  }
}

TEST_F(EveryMode, EachBadEndHasItsCode) {
  expectCaught({{L"clean", 0, {}},
                {L"long_run", 0, {}},
                {L"write_to_nowhere", zo::test::kExitAccess, {"writing", "mode_tests.exe+0x"}},
                {L"uncaught_exception", zo::test::kExitTerminate, {"nobody catches this"}},
                {L"abort", zo::test::kExitTerminate, {"abort"}},
                {L"stack_overflow", zo::test::kExitException, {"crash:"}},
                {L"division_by_zero", zo::test::kExitException, {"c0000094"}},
                {L"no_such_child", zo::test::kExitUnknownChild, {"no_such_child"}},
                {L"suite_with_failure", 1, {"on purpose"}}});
  SetEnvironmentVariableW(L"ZO_TEST_TIMEOUT_MS", L"50");
  expectCaught({{L"hang", zo::test::kExitHung, {"after 50 ms"}}});
}

#ifdef ZO_GUARDED
TEST_F(EveryMode, UndefinedBehaviourTrapsInGuardedBuilds) {
  expectCaught({{L"signed_overflow", zo::test::kExitTrap, {"c000001d"}}});
}
#endif
