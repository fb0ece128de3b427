// The guard without contention, beside the kernel calls that it consists of (its floor: what can be
// lost above them is ours) and beside a lock that lives in the process (what sharing by name
// costs).
#include <benchmark/benchmark.h>
#include <windows.h>
#include <zo/system/guard.h>

namespace {

struct Guard : ZoSingleWriterMultiReaderGuard {
  Guard() { made = zoSWMRGInitialize(this, nullptr) == 1; }
  ~Guard() {
    if (made) zoSWMRGDelete(this);
  }
  bool made = false;
};

// Runs `pair`, which locks, answers whether it got in, and unlocks.
template <typename Pair>
void run(benchmark::State& state, Pair pair) {
  Guard guard;
  for (auto _ : state)
    if (!pair(guard)) return state.SkipWithError("the guard was not obtained");
}

void readOurs(benchmark::State& state) {
  run(state, [](Guard& guard) {
    if (zoSWMRGWaitToRead(&guard, 1000) != ZoWait::obtained) return false;
    zoSWMRGDoneReading(&guard);
    return true;
  });
}

void readRawKernelCalls(benchmark::State& state) {
  run(state, [](Guard& guard) {
    const HANDLE both[] = {guard.mutexNoWriter, guard.semNumReaders};
    LONG before = 0;
    if (WaitForSingleObject(guard.mutexNoWriter, 1000) != WAIT_OBJECT_0) return false;
    ReleaseSemaphore(guard.semNumReaders, 1, &before);
    ResetEvent(guard.eventNoReaders);
    ReleaseMutex(guard.mutexNoWriter);
    WaitForMultipleObjects(2, both, TRUE, INFINITE);
    WaitForSingleObject(guard.semNumReaders, 0);
    SetEvent(guard.eventNoReaders);
    ReleaseMutex(guard.mutexNoWriter);
    return true;
  });
}

void writeOurs(benchmark::State& state) {
  run(state, [](Guard& guard) {
    if (zoSWMRGWaitToWrite(&guard, 1000) != ZoWait::obtained) return false;
    zoSWMRGDoneWriting(&guard);
    return true;
  });
}

void writeRawKernelCalls(benchmark::State& state) {
  run(state, [](Guard& guard) {
    const HANDLE both[] = {guard.mutexNoWriter, guard.eventNoReaders};
    if (WaitForMultipleObjects(2, both, TRUE, 1000) != WAIT_OBJECT_0) return false;
    ReleaseMutex(guard.mutexNoWriter);
    return true;
  });
}

void readSrwLock(benchmark::State& state) {
  SRWLOCK lock = SRWLOCK_INIT;
  for (auto _ : state) {
    AcquireSRWLockShared(&lock);
    benchmark::ClobberMemory();
    ReleaseSRWLockShared(&lock);
  }
}

void writeSrwLock(benchmark::State& state) {
  SRWLOCK lock = SRWLOCK_INIT;
  for (auto _ : state) {
    AcquireSRWLockExclusive(&lock);
    benchmark::ClobberMemory();
    ReleaseSRWLockExclusive(&lock);
  }
}

}  // namespace

// Wall time: most of it passes in the server process under Wine.
BENCHMARK(readOurs)->Name("Guard/read/ours")->UseRealTime();
BENCHMARK(readRawKernelCalls)->Name("Guard/read/peer:raw_kernel_calls")->UseRealTime();
BENCHMARK(readSrwLock)->Name("Guard/read/peer:srwlock")->UseRealTime();
BENCHMARK(writeOurs)->Name("Guard/write/ours")->UseRealTime();
BENCHMARK(writeRawKernelCalls)->Name("Guard/write/peer:raw_kernel_calls")->UseRealTime();
BENCHMARK(writeSrwLock)->Name("Guard/write/peer:srwlock")->UseRealTime();
