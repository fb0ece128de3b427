// What a second thread of the client gains: packing members, and reading them from one library.
// The peer is the same work by one.
//
// Needs two processors, which bench/run gives to families of this name.
#include <benchmark/benchmark.h>
#include <windows.h>
#include <zo/attach/life_cycle.h>
#include <zo/files.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t kMembers = 200;

void check(int code, const char* what) {
  if (code == 0) return;
  std::fprintf(stderr, "%s: %d\n", what, code);
  std::abort();
}

// Source text: lines that resemble each other.
std::string text(std::size_t number) {
  std::string out;
  for (std::size_t i = 0; i < 400; ++i) {
    out += "  if (part" + std::to_string((number * 31 + i * i) % 977) + ".diameter() > limit_[" +
           std::to_string(i % 13) + "]) return refuse(\"thread " + std::to_string(number) +
           "\");\n";
  }
  return out;
}

const std::wstring& path() {
  static const std::wstring path = [] {
    check(zoComDllAttach(), "attach");
    const auto folder = std::filesystem::temp_directory_path();
    return (folder / ("zo_threads_" + std::to_string(GetCurrentProcessId()))).wstring();
  }();
  return path;
}

const std::vector<std::string>& sources() {
  static const std::vector<std::string> all = [] {
    std::vector<std::string> made;
    for (std::size_t i = 0; i < kMembers; ++i) made.push_back(text(i));
    return made;
  }();
  return all;
}

template <class Work>
std::vector<std::thread> start(unsigned threads, std::atomic<std::size_t>& next, const Work& work) {
  std::vector<std::thread> started;
  for (unsigned i = 0; i < threads; ++i) {
    started.emplace_back([&next, work] {
      ZoPacker packer;
      for (std::size_t at; (at = next++) < kMembers;) work(packer, at);
    });
  }
  return started;
}

// Threads pack, and this one adds what comes, in order. With a condition variable: for this target
// std::atomic<bool>::wait of GCC 12 loses a notification that comes between its look and its sleep.
void packBy(unsigned threads) {
  std::vector<ZoPackedMember> packed(kMembers);
  std::vector<char> isPacked(kMembers);
  std::mutex mutex;
  std::condition_variable comes;
  std::atomic<std::size_t> next = 0;
  auto workers = start(threads, next, [&](ZoPacker& packer, std::size_t at) {
    const std::string& source = sources()[at];
    check(packer.pack(source.data(), source.size(), packed[at], ZoLibrary::kCompress,
                      ZoLibrary::kBest),
          "pack");
    {
      const std::lock_guard lock(mutex);
      isPacked[at] = 1;
    }
    comes.notify_one();
  });
  ZoLibrary library;
  check(library.open(path().c_str(), ZoFile::kReadWrite, ZoFile::kCreateAlways), "open");
  check(library.beginBatch(), "batch");
  for (std::size_t at = 0; at < kMembers; ++at) {
    {
      std::unique_lock lock(mutex);
      comes.wait(lock, [&] { return isPacked[at] != 0; });
    }
    check(library.addFile(packed[at], std::to_wstring(at).c_str()), "add");
    packed[at] = ZoPackedMember();
  }
  check(library.endBatch(), "batch");
  for (std::thread& worker : workers) worker.join();
}

void readBy(unsigned threads) {
  ZoLibrary library;
  check(library.open(path().c_str()), "open");
  std::vector<ZoLibEntry> entries;
  check(library.forEachEntry([&](const ZoLibEntry& entry) {
    entries.push_back(entry);
    return true;
  }),
        "entries");
  std::atomic<std::size_t> next = 0;
  auto workers = start(threads, next, [&](ZoPacker&, std::size_t at) {
    check(library.verify(entries[at]), "verify");
  });
  for (std::thread& worker : workers) worker.join();
}

void run(benchmark::State& state, bool packs, unsigned threads) {
  static_cast<void>(path());  // attaches
  static_cast<void>(sources());
  if (!packs) packBy(1);
  for (auto _ : state) packs ? packBy(threads) : readBy(threads);
  std::error_code ignored;
  std::filesystem::remove(path(), ignored);
}

BENCHMARK_CAPTURE(run, pack_two, true, 2)
    ->Name("Pack/by_two/ours")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, pack_one, true, 1)
    ->Name("Pack/by_two/peer:one_thread")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, read_two, false, 2)
    ->Name("Read/by_two/ours")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, read_one, false, 1)
    ->Name("Read/by_two/peer:one_thread")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
