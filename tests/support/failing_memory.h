// Lets the memory run out: one request of this thread, or that one and all that follow, gets none.
//
// Every request counts that a module of the program makes of the C runtime: malloc, realloc and all
// that stands on them, the operator new of the program and of the C++ runtime too. What the system
// takes for itself does not count. Works on the guarded heap only: isPossible() tells, and fails
// the test where a guarded build has none.
#pragma once

#include <gtest/gtest.h>

#include <new>

namespace zo::test {

class FailingMemory {
 public:
  enum Then { kOnce, kForGood };

  // The n-th request from now, counted from 1, fails; 0 for none. One at a time.
  FailingMemory(unsigned n, Then then);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  [[nodiscard]] bool failed() const;
  [[nodiscard]] static bool isPossible();
};

// For the heap: counts a request, and tells whether it gets nothing.
bool isMemoryRefused() noexcept;

// Runs act on a fresh state, each time with another request failing, until none is left to fail.
//   make()             a state, moved or not; never fails
//   act(state)         what is tried: gives a code of the library, 0 for success, or throws
//   check(state, done) what must hold after act succeeded (done), and after it failed, before it is
//                      tried again with memory: then it must succeed
// A failure is std::bad_alloc or a code other than 0. Success in spite of a failed request is fine,
// as long as all is done. The first run has all its memory: it fills caches.
template <class Make, class Act, class Check>
void failEveryRequest(const char* what, Make make, Act act, Check check) {
  if (!FailingMemory::isPossible()) GTEST_SKIP() << "the guarded run does this";
  for (const FailingMemory::Then then : {FailingMemory::kOnce, FailingMemory::kForGood}) {
    for (unsigned n = 0;; ++n) {
      SCOPED_TRACE(testing::Message() << what << ", request " << n
                                      << (then == FailingMemory::kOnce ? " fails" : " and on"));
      auto state = make();
      int code = 0;
      bool failed = false;
      {
        const FailingMemory failing(n, then);
        try {
          code = act(state);
        } catch (const std::bad_alloc&) {
          code = -1;
        }
        failed = failing.failed();
      }
      ASSERT_TRUE(failed || code == 0)
          << "it fails with code " << code << ", and had all it wanted";
      check(state, code == 0);
      if (code != 0) {
        ASSERT_EQ(act(state), 0) << "and cannot be tried again";
        check(state, true);
      }
      if (testing::Test::HasFailure()) return;  // one report is enough
      if (n > 0 && !failed) break;
    }
  }
}

}  // namespace zo::test
