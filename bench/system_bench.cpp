// The services: reaching one, telling a hundred reactors, and starting and stopping the library.
#include <benchmark/benchmark.h>
#include <zo/system.h>
#include <zo/variant.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include "support/open_handles.h"

namespace {

// The library, attached while a benchmark runs.
struct Attached {
  Attached() {
    if (zoComDllAttach() != 0) std::abort();
  }
  ~Attached() { zoComDllDetach(); }
};

// ---- Access: the address of a service, and a call on it ----
constexpr int kCalls = 1000;
ZoCfg* plain = nullptr;

// ClobberMemory: each access reads the pointers anew, as in code that does something in between.
template <typename Access>
void access(benchmark::State& state, Access service) {
  const Attached attached;
  plain = &ZoSystem::cfg();
  benchmark::DoNotOptimize(&plain);
  for (auto _ : state) {
    for (int i = 0; i < kCalls; ++i) {
      benchmark::DoNotOptimize(&service());
      benchmark::ClobberMemory();
    }
  }
}

template <typename Access>
void call(benchmark::State& state, Access service) {
  const Attached attached;
  plain = &ZoSystem::cfg();
  benchmark::DoNotOptimize(&plain);
  for (auto _ : state) {
    int sum = 0;
    for (int i = 0; i < kCalls; ++i) sum += service().timeOut();
    benchmark::DoNotOptimize(sum);
  }
}

void accessOurs(benchmark::State& state) {
  access(state, []() -> ZoCfg& { return ZoSystem::cfg(); });
}
void accessPlain(benchmark::State& state) {
  access(state, []() -> ZoCfg& { return *plain; });
}
void callOurs(benchmark::State& state) {
  call(state, []() -> ZoCfg& { return ZoSystem::cfg(); });
}
void callPlain(benchmark::State& state) {
  call(state, []() -> ZoCfg& { return *plain; });
}

// ---- Notices ----
constexpr int kReactors = 100;
constexpr ZoSysNotice kNotice{1000};

class Counter : public ZoSystemReactor {
 public:
  void onNotice(ZoSysNotice, const ZoVariant&) override { ++s_count; }
  double priority() override { return 1; }
  int release(const wchar_t*) override { return 1; }
  static inline long s_count = 0;
};

void noticeOurs(benchmark::State& state) {
  const Attached attached;
  ZoSysDisp& dispatcher = ZoSystem::sysDisp();
  for (int i = 0; i < kReactors; ++i)
    if (dispatcher.addReactor(new Counter) != 0) return state.SkipWithError("not added");
  const ZoVariant data(42);
  for (auto _ : state)
    if (dispatcher.sendNotice(kNotice, data) != 0) return state.SkipWithError("not delivered");
  benchmark::DoNotOptimize(Counter::s_count);
}

// A hundred virtual calls, and the guard taken and given back once.
void noticePlainLoop(benchmark::State& state) {
  std::vector<std::unique_ptr<ZoSystemReactor>> reactors;
  for (int i = 0; i < kReactors; ++i) reactors.push_back(std::make_unique<Counter>());
  benchmark::DoNotOptimize(reactors.data());
  ZoSysObj service;
  const ZoVariant data(42);
  for (auto _ : state) {
    if (service.waitToWrite() != 0) return state.SkipWithError("the guard was not obtained");
    for (const auto& reactor : reactors) reactor->onNotice(kNotice, data);
    service.doneWriting();
  }
  benchmark::DoNotOptimize(Counter::s_count);
}

// ---- Start and stop ----
unsigned long kernelObjects() {
  const unsigned long before = zo::test::openHandles();
  const Attached attached;
  return zo::test::openHandles() - before;
}

double microseconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin)
      .count();
}

// What a program pays that attaches once: measured before anything else here has begun.
const double firstAttach = microseconds([] {
  if (zoComDllAttach() != 0) std::abort();
});
const double firstDetach = microseconds([] { zoComDllDetach(); });

void attachDetach(benchmark::State& state) {
  const unsigned long before = zo::test::openHandles();
  for (auto _ : state) const Attached attached;
  if (zo::test::openHandles() != before) state.SkipWithError("handles are left behind");
  state.counters["kernel_objects"] = static_cast<double>(kernelObjects());
  state.counters["first_attach_us"] = firstAttach;
  state.counters["first_detach_us"] = firstDetach;
}

// A guard for the process and each service: what the platform asks for that.
void bareGuards(benchmark::State& state) {
  std::vector<ZoSingleWriterMultiReaderGuard> guards(16);
  for (auto _ : state) {
    for (auto& guard : guards)
      if (!zoSWMRGInitialize(&guard, nullptr)) return state.SkipWithError("no guard");
    for (auto& guard : guards) zoSWMRGDelete(&guard);
  }
  state.counters["kernel_objects"] = static_cast<double>(guards.size() * 3);
}

}  // namespace

BENCHMARK(accessOurs)->Name("Service/access/ours");
BENCHMARK(accessPlain)->Name("Service/access/peer:static_pointer");
BENCHMARK(callOurs)->Name("Service/access_and_call/ours");
BENCHMARK(callPlain)->Name("Service/access_and_call/peer:static_pointer");
// Wall time: most of it passes in the server process under Wine.
BENCHMARK(noticeOurs)->Name("Notice/100_reactors/ours")->UseRealTime();
BENCHMARK(noticePlainLoop)->Name("Notice/100_reactors/peer:loop_and_guard")->UseRealTime();
BENCHMARK(attachDetach)->Name("AttachDetach/ours")->UseRealTime();
BENCHMARK(bareGuards)->Name("AttachDetach/peer:bare_guards")->UseRealTime();
