// Self-checks: each fault is caught, with the exit code and the words that lead to it, and honest
// programs pass. The guarded heap works in every build, so these run in all of them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/exit_codes.h"

namespace {

using zo::test::ChildOptions;
using zo::test::ChildProcess;

struct Outcome {
  int code;
  std::string output;  // both streams
};

Outcome run(const wchar_t* child, ChildOptions options) {
  options.captureErrors = true;
  ChildProcess process(child, {}, options);
  Outcome outcome{};
  while (const auto line = process.hear()) outcome.output += *line + "\n";
  outcome.code = process.wait();
  outcome.output += process.errors();
  return outcome;
}

struct Fault {
  const wchar_t* child;
  int code;
  std::vector<const char*> words;  // all of them are in the output
};

void expectCaught(const std::vector<Fault>& faults, const ChildOptions& options) {
  for (const Fault& fault : faults) {
    SCOPED_TRACE(std::wstring(fault.child));
    const Outcome outcome = run(fault.child, options);
    EXPECT_EQ(outcome.code, fault.code) << outcome.output;
    for (const char* word : fault.words) {
      EXPECT_NE(outcome.output.find(word), std::string::npos) << word << "\n" << outcome.output;
    }
  }
}

const ChildOptions kGuarded{{{L"ZO_GUARDED_HEAP", L"guard"}}, true};
const ChildOptions kFenced{{{L"ZO_GUARDED_HEAP", L"guard"}, {L"ZO_GUARDED_LIMIT", L"0"}}, true};
const ChildOptions kPlain{{{L"ZO_GUARDED_HEAP", L""}}, true};

}  // namespace

TEST(GuardedMode, OneByteTooFarIsCaughtWhereverTheBlockComesFrom) {
  const char* const past = "0 bytes past the end of the live block";
  expectCaught({{L"overrun_write", zo::test::kExitAccess, {"writing", past, "mode_tests.exe+0x"}},
                {L"overrun_read", zo::test::kExitAccess, {"reading", past, "of 10 bytes"}},
                {L"overrun_in_runtime_block", zo::test::kExitAccess, {past, "libstdc++-6.dll+0x"}},
                {L"overrun_in_module_block", zo::test::kExitAccess, {past, "zo_fault_module.dll"}},
                {L"overrun_by_module", zo::test::kExitAccess, {past, "at zo_fault_module.dll+0x"}},
                {L"overrun_of_calloc_and_realloc", zo::test::kExitAccess, {past, "of 10 bytes"}},
                {L"overrun_of_large_block", zo::test::kExitAccess, {past, "of 10010 bytes"}}},
               kGuarded);
}

TEST(GuardedMode, AFreedBlockIsOutOfReach) {
  expectCaught({{L"use_after_free_read", zo::test::kExitAccess, {"at byte 0 of the freed block"}},
                {L"use_after_free_write", zo::test::kExitAccess, {"at byte 9 of the freed block"}},
                {L"stale_pointer_after_realloc", zo::test::kExitAccess, {"the freed block"}}},
               kGuarded);
}

TEST(GuardedMode, WrongFreesAreReported) {
  const std::vector<Fault> faults = {
      {L"double_free", zo::test::kExitHeapDamage, {"double free", "the freed block of 10 bytes"}},
      {L"free_inside_block", zo::test::kExitHeapDamage, {"free inside", "at byte 1 of the live"}},
      {L"write_before_block",
       zo::test::kExitHeapDamage,
       {"bytes before a block", "1 bytes before"}}};
  expectCaught(faults, kGuarded);
  expectCaught(faults, kFenced);
}

TEST(GuardedMode, FencedBlocksAreLookedAtWhenTheProgramEnds) {
  expectCaught(
      {{L"write_behind_until_end",
        zo::test::kExitHeapDamage,
        {"bytes behind a block were written"}},
       {L"write_after_free_until_end", zo::test::kExitHeapDamage, {"a freed block was written"}}},
      kFenced);
}

TEST(GuardedMode, LeaksFailTheProgramAndTheTestThatLeaks) {
  const std::vector<Fault> faults = {
      {L"leak", zo::test::kExitLeak, {"1 blocks leaked, 10 bytes", "mode_tests.exe+0x"}},
      {L"leaked_chain", zo::test::kExitLeak, {"2 blocks leaked, 18 bytes"}},
      {L"suite_with_leak", 1, {"[  FAILED  ] OnPurpose.Leaks", "1 blocks leaked, 10 bytes"}}};
  expectCaught(faults, kGuarded);
  expectCaught(faults, kFenced);
}

TEST(GuardedMode, HonestProgramsPassAndTheReportCountsTheirBlocks) {
  ChildOptions some = kGuarded;
  some.environment[L"ZO_GUARDED_LIMIT"] = L"600";  // less than long_run has alive
  expectCaught({{L"clean", 0, {"blocks guarded"}}, {L"long_run", 0, {"blocks guarded"}}}, kGuarded);
  expectCaught({{L"clean", 0, {"0 blocks guarded"}}, {L"long_run", 0, {"0 blocks guarded"}}},
               kFenced);
  expectCaught({{L"long_run", 0, {"blocks guarded"}}}, some);
  expectCaught({{L"clean", 0, {}}, {L"long_run", 0, {}}}, kPlain);
}

TEST(EveryMode, EachBadEndHasItsCode) {
  ChildOptions impatient = kPlain;
  impatient.environment[L"ZO_TEST_TIMEOUT_MS"] = L"50";
  expectCaught({{L"write_to_nowhere", zo::test::kExitAccess, {"writing", "mode_tests.exe+0x"}},
                {L"uncaught_exception", zo::test::kExitTerminate, {"nobody catches this"}},
                {L"abort", zo::test::kExitTerminate, {"abort"}},
                {L"stack_overflow", zo::test::kExitException, {"crash:"}},
                {L"division_by_zero", zo::test::kExitException, {"c0000094"}},
                {L"no_such_child", zo::test::kExitUnknownChild, {"no_such_child"}},
                {L"suite_with_failure", 1, {"on purpose"}}},
               kPlain);
  expectCaught({{L"hang", zo::test::kExitHung, {"after 50 ms"}}}, impatient);
}

#ifdef ZO_GUARDED
TEST(EveryMode, UndefinedBehaviourTrapsInGuardedBuilds) {
  expectCaught({{L"signed_overflow", zo::test::kExitTrap, {"c000001d"}},
                {L"shift_too_far", zo::test::kExitTrap, {"c000001d"}}},
               kPlain);
}
#endif
