// Each fault is caught, with the exit code and the words that lead to it, and honest programs pass.
// The guarded heap works in every build, so these run in all of them.
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

}  // namespace

TEST(GuardedMode, EachMisuseOfABlockIsCaughtWithWordsThatLeadToIt) {
  SetEnvironmentVariableW(L"ZO_GUARDED_HEAP", L"guard");
  const int access = zo::test::kExitAccess, damage = zo::test::kExitHeapDamage;
  const char* const past = "0 bytes past the end of the live block";
  expectCaught({{L"overrun", access, {"writing", past, "of 10 bytes", "mode_tests.exe+0x"}},
                {L"overrun_in_runtime_block", access, {past, "libstdc++-6.dll+0x"}},
                {L"overrun_of_calloc_and_realloc", access, {past, "of 10 bytes"}},
                {L"overrun_of_large_block", access, {"reading", past, "of 10010 bytes"}},
                {L"use_after_free", access, {"at byte 9 of the freed block"}},
                {L"stale_pointer_after_realloc", access, {"the freed block"}},
                {L"double_free", damage, {"double free", "the freed block of 10 bytes"}},
                {L"free_inside_block", damage, {"free inside", "at byte 1 of the live"}},
                {L"write_before_block", damage, {"bytes before a block", "1 bytes before"}},
                {L"leak", zo::test::kExitLeak, {"1 blocks leaked, 10 bytes", "mode_tests.exe+0x"}},
                {L"clean", 0, {}},
                {L"long_run", 0, {}}});
}

TEST(EveryMode, EachBadEndHasItsCode) {
  SetEnvironmentVariableW(L"ZO_GUARDED_HEAP", nullptr);
  expectCaught({{L"clean", 0, {}},
                {L"write_to_nowhere", zo::test::kExitAccess, {"writing", "mode_tests.exe+0x"}},
                {L"uncaught_exception", zo::test::kExitTerminate, {"nobody catches this"}},
                {L"abort", zo::test::kExitTerminate, {"abort"}},
                {L"stack_overflow", zo::test::kExitException, {"crash:"}},
                {L"no_such_child", zo::test::kExitUnknownChild, {"no_such_child"}},
#ifdef ZO_GUARDED
                {L"signed_overflow", zo::test::kExitTrap, {"c000001d"}},
#endif
                {L"suite_with_failure", 1, {"on purpose"}}});
}
