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
#include "support/guarded_heap.h"
#include "support/test_main.h"

namespace {

volatile std::size_t ten = 10;
char* volatile block = nullptr;
volatile char sink = 0;

char* newBlock() {
  block = new char[ten];
  return block;
}
void freeBlock() { delete[] block; }

}  // namespace

ZO_TEST_CHILD(overrun_write) {
  newBlock()[ten] = 1;
  return 0;
}

ZO_TEST_CHILD(overrun_read) {
  sink = newBlock()[ten];
  return 0;
}

// The text's block comes from inside the C++ runtime's DLL.
ZO_TEST_CHILD(overrun_in_runtime_block) {
  std::string text(ten * 10, 'x');
  text.reserve(ten * 20);
  block = text.data();
  block[text.capacity() + 1] = 1;
  return 0;
}

ZO_TEST_CHILD(overrun_of_calloc_and_realloc) {
  block = static_cast<char*>(std::calloc(ten, 3));
  block = static_cast<char*>(std::realloc(block, ten));
  sink = block[ten - 1];
  block[ten] = 1;
  return 0;
}

// A block of several pages.
ZO_TEST_CHILD(overrun_of_large_block) {
  block = new char[ten * 1001];
  block[ten * 1001 - 1] = 1;
  sink = block[ten * 1001];
  return 0;
}

ZO_TEST_CHILD(stale_pointer_after_realloc) {
  newBlock();
  char* moved = static_cast<char*>(std::realloc(block, ten + 1));
  sink = block[0];
  std::free(moved);
  return 0;
}

ZO_TEST_CHILD(use_after_free_read) {
  newBlock();
  freeBlock();
  sink = block[0];
  return 0;
}

ZO_TEST_CHILD(use_after_free_write) {
  newBlock();
  freeBlock();
  for (unsigned i = 0; i < 1000; ++i) delete new volatile long long;
  block[ten - 1] = 1;
  return 0;
}

// Not quite null: a guarded build traps before it follows a null pointer.
ZO_TEST_CHILD(write_to_nowhere) {
  block = reinterpret_cast<char*>(ten);
  *block = 1;
  return 0;
}

ZO_TEST_CHILD(double_free) {
  newBlock();
  freeBlock();
  freeBlock();
  return 0;
}

ZO_TEST_CHILD(free_inside_block) {
  newBlock();
  block = block + 1;
  freeBlock();
  return 0;
}

ZO_TEST_CHILD(write_before_block) {
  newBlock()[-1] = 1;
  freeBlock();
  return 0;
}

ZO_TEST_CHILD(leak) {
  newBlock();
  block = nullptr;
  return 0;
}

// Only the first block is lost by itself; the second one hangs on it.
ZO_TEST_CHILD(leaked_chain) {
  auto** first = new char*;
  *first = new char[ten];
  block = reinterpret_cast<char*>(first);
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

ZO_TEST_CHILD(division_by_zero) {
  RaiseException(EXCEPTION_INT_DIVIDE_BY_ZERO, 0, 0, nullptr);  // the division itself may trap
  return 0;
}

ZO_TEST_CHILD(hang) {
  while (ten) Sleep(10);
  return 0;
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
  try {
    throw std::runtime_error(std::string(100, 'e'));
  } catch (const std::exception& e) {
    ofThread += e.what();
  }
  for (std::size_t size = 0; size < 20000; size = size * 5 / 4 + 1) {
    std::unique_ptr<char[]> bytes(new char[size]);
    std::fill_n(bytes.get(), size, 'b');
    const std::size_t natural = size ? std::min<std::size_t>(size & (~size + 1), 16) : 16;
    if (size && reinterpret_cast<std::uintptr_t>(bytes.get()) % natural) return 2;
  }
  void* const wide = operator new(64, std::align_val_t(64));
  if (reinterpret_cast<std::uintptr_t>(wide) % 64) return 1;
  operator delete(wide, std::align_val_t(64));
  void* grown = nullptr;
  for (std::size_t size = 1; size < 100000; size *= 3) grown = std::realloc(grown, size);
  std::free(std::realloc(grown, 5));
  std::free(_strdup("allocated inside the C runtime"));
  return 0;
}

// Many live blocks, many more freed ones, from several threads.
ZO_TEST_CHILD(long_run) {
  const auto work = [] {
    std::vector<std::unique_ptr<std::string>> live(500);
    for (std::size_t i = 0; i < 3000; ++i) {
      auto& place = live[i * 7 % live.size()];
      if (place && *place != std::string(place->size(), 'x')) std::abort();
      place = std::make_unique<std::string>(i % 300, 'x');
    }
  };
  const std::size_t before = zo::test::liveBlocks();
  std::thread other(work);
  work();
  other.join();
  // The other thread may leave a few blocks of the thread runtime.
  return zo::test::liveBlocks() <= before + 10 ? 0 : 1;
}

// Tests that GoogleTest runs inside a child.
namespace {

struct OnPurpose : testing::Test {
  explicit OnPurpose(bool leaking) : leaks(leaking) {}
  void TestBody() override {
    newBlock();
    if (!leaks) freeBlock();
    block = nullptr;
    EXPECT_TRUE(leaks) << "on purpose";
  }
  bool leaks;
};

int runOnly(bool leaking) {
  testing::RegisterTest("OnPurpose", "Only", nullptr, nullptr, __FILE__, __LINE__,
                        [leaking]() -> testing::Test* { return new OnPurpose(leaking); });
  int count = 1;
  std::string program = "child";
  char* arguments[] = {program.data(), nullptr};
  testing::InitGoogleTest(&count, arguments);
  testing::GTEST_FLAG(filter) = "OnPurpose.Only";
  testing::GTEST_FLAG(output) = "";
  return zo::test::runAllTests();
}

}  // namespace

ZO_TEST_CHILD(suite_with_leak) { return runOnly(true); }
ZO_TEST_CHILD(suite_with_failure) { return runOnly(false); }
