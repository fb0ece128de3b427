// The faults that the modes of the build must catch, each as a child of its own. Everything that
// decides goes through volatile variables, so that no optimiser sees the fault coming.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.h"

namespace {

volatile std::size_t ten = 10;
char* volatile block = nullptr;

char* newBlock() {
  block = new char[ten];
  return block;
}
int freeBlock() {
  delete[] block;
  return 0;
}

}  // namespace

ZO_TEST_CHILD(overrun) { return newBlock()[ten] = 1; }

// The text's block comes from inside the C++ runtime's DLL.
ZO_TEST_CHILD(overrun_in_runtime_block) {
  std::string text(ten * 20, 'x');
  block = text.data();
  return block[text.capacity() + 1] = 1;
}

ZO_TEST_CHILD(overrun_of_calloc_and_realloc) {
  block = static_cast<char*>(std::calloc(ten, 3));
  block = static_cast<char*>(std::realloc(block, ten));
  block[ten - 1] = 1;
  return block[ten] = 1;
}

// A block of several pages.
ZO_TEST_CHILD(overrun_of_large_block) {
  block = new char[ten * 1001];
  return block[ten * 1001];
}

ZO_TEST_CHILD(stale_pointer_after_realloc) {
  char* const old = newBlock();
  block = static_cast<char*>(std::realloc(block, ten + 1));
  return *static_cast<volatile char*>(old);
}

ZO_TEST_CHILD(use_after_free) {
  newBlock();
  freeBlock();
  for (unsigned i = 0; i < 1000; ++i) delete new volatile long long;
  return block[ten - 1] = 1;
}

// Not quite null: a guarded build traps before it follows a null pointer.
ZO_TEST_CHILD(write_to_nowhere) {
  block = reinterpret_cast<char*>(ten);
  return *block = 1;
}

ZO_TEST_CHILD(double_free) { return newBlock(), freeBlock(), freeBlock(); }

ZO_TEST_CHILD(free_inside_block) {
  block = newBlock() + 1;
  return freeBlock();
}

ZO_TEST_CHILD(write_before_block) {
  newBlock()[-1] = 1;
  return freeBlock();
}

ZO_TEST_CHILD(leak) {
  newBlock();
  block = nullptr;
  return 0;
}

ZO_TEST_CHILD(uncaught_exception) { throw std::runtime_error("nobody catches this"); }

ZO_TEST_CHILD(abort) { std::abort(); }

ZO_TEST_CHILD(stack_overflow) {
  struct Recursion {
    static int deeper(volatile int* above) {
      volatile int room[100] = {*above};
      return ten ? room[0] + deeper(room) + room[99] : 0;
    }
  };
  volatile int start = 1;
  return Recursion::deeper(&start);
}

#ifdef ZO_GUARDED
ZO_TEST_CHILD(signed_overflow) {
  volatile int most = INT_MAX;
  most = most + 1;
  return 0;
}
#endif

// What an honest program does: nothing of it may be taken for a fault.
ZO_TEST_CHILD(clean) {
  static const std::vector<std::string> kept(ten, std::string(100, 'k'));  // reachable, so no leak
  thread_local std::string ofThread(100, 't');
  ofThread += kept.back();
  std::thread([] {
    thread_local std::size_t ofOther = ten;  // without destructor, see guarded_heap.h
    ofOther += 1;
  }).join();
  for (std::size_t size = 0; size < 20000; size = size * 5 / 4 + 1) {
    std::unique_ptr<char[]> bytes(new char[size]);
    std::fill_n(bytes.get(), size, 'b');
    const std::size_t natural = size ? std::min<std::size_t>(size & (~size + 1), 16) : 16;
    if (size && reinterpret_cast<std::uintptr_t>(bytes.get()) % natural) return 2;
  }
  void* const wide = operator new(64, std::align_val_t(64));
  if (reinterpret_cast<std::uintptr_t>(wide) % 64) return 1;
  operator delete(wide, std::align_val_t(64));
  std::free(_strdup("allocated inside the C runtime"));
  return 0;
}

// More live blocks than the heap guards, and many more freed ones, from several threads.
ZO_TEST_CHILD(long_run) {
  const auto work = [] {
    std::vector<std::string> live(15'000);
    for (std::size_t i = 0; i < 30'000; ++i) {
      std::string& text = live[i * 7 % live.size()];
      if (text != std::string(text.size(), 'x')) std::abort();
      text = std::string(16 + i % 300, 'x');
    }
  };
  std::thread other(work);
  work();
  other.join();
  return 0;
}

// A test of GoogleTest's that fails inside a child.
ZO_TEST_CHILD(suite_with_failure) {
  struct OnPurpose : testing::Test {
    void TestBody() override { FAIL() << "on purpose"; }
  };
  testing::RegisterTest("OnPurpose", "Only", nullptr, nullptr, __FILE__, __LINE__,
                        []() -> testing::Test* { return new OnPurpose; });
  testing::InitGoogleTest();
  testing::GTEST_FLAG(filter) = "OnPurpose.Only";
  testing::GTEST_FLAG(output) = "";
  return RUN_ALL_TESTS();
}
