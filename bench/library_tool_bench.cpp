// The library tool beside 7z, zip and unzip, on the same data.
//
// Ours runs in this process, by the tool's own code from the command line on: the start of a
// program under Wine would drown the rest. The peers, one of them under Wine as well, are measured
// by library_tool_peers.py in the same run of bench/run without what their own start takes. That
// script also makes the data, in the folder that ZO_BENCH_DATA names.
#include <benchmark/benchmark.h>
#include <windows.h>
#include <zo/attach/life_cycle.h>
#include <zo/library/library.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "../tools/shared/console.h"
#include "../tools/shared/program.h"

namespace {

namespace fs = std::filesystem;

// The data, as the current folder; output goes nowhere.
void begin() {
  static const bool s_begun = [] {
    const char* data = std::getenv("ZO_BENCH_DATA");
    if (!data || zoComDllAttach() != 0) std::abort();
    fs::current_path("Z:" + std::string(data));
    const HANDLE nowhere =
        CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    SetStdHandle(STD_OUTPUT_HANDLE, nowhere);
    return true;
  }();
  benchmark::DoNotOptimize(s_begun);
}

void zolib(benchmark::State& state, const std::vector<std::string>& arguments) {
  zolib::Console console;
  if (zolib::runCommandLine(arguments, console) != zolib::kOk) state.SkipWithError("zolib failed");
}

// A name that nothing had yet: a file system is slow to make files where it deleted some just now.
std::string fresh(const std::string& name) {
  static int s_count = 0;
  return name + std::to_string(++s_count);
}

void addOne(benchmark::State& state, const char* library) {
  begin();
  for (auto _ : state) zolib(state, {"add", library, "100KB.bin", "--mode", "store", "-q"});
}

void listAll(benchmark::State& state) {
  begin();
  const std::string library = std::to_string(state.range(0)) + ".lib";
  for (auto _ : state) zolib(state, {"list", library});
}

void readOne(benchmark::State& state) {
  begin();
  for (auto _ : state) zolib(state, {"cat", "100000.lib", "folder50/wanted.txt"});
}

// A million tiny members in one call, beside a hundred calls on ten thousand: what grows faster
// than the library shows.
struct TinyWork {
  std::vector<std::string> before, after;  // of the library's name
};
const TinyWork kListTiny{{"list"}, {}}, kTestTiny{{"test"}, {"-q"}},
    kReadTiny{{"cat"}, {"folder50/wanted.txt"}},
    kAddTiny{{"add"}, {"100KB.bin", "--mode", "store", "-q"}};

void tiny(benchmark::State& state, const TinyWork& work, const char* library, int times) {
  begin();
  std::vector<std::string> arguments = work.before;
  arguments.emplace_back(library);
  arguments.insert(arguments.end(), work.after.begin(), work.after.end());
  for (auto _ : state) {
    for (int time = 0; time < times; ++time) zolib(state, arguments);
  }
}

void tinyPair(const std::string& name, const TinyWork& work) {
  const auto add = [&](const char* who, const char* library, int times) {
    benchmark::RegisterBenchmark((name + who).c_str(), tiny, work, library, times)->Iterations(1);
  };
  add("/million/ours", "tiny1000000.lib", 1);
  add("/million/peer:100_times_10000", "tiny10000.lib", 100);
}

const bool kTinyPairs = [] {
  tinyPair("List", kListTiny);
  tinyPair("Test", kTestTiny);
  tinyPair("ReadOne", kReadTiny);
  tinyPair("AddOne", kAddTiny);
  return true;
}();

void packTree(benchmark::State& state) {
  begin();
  for (auto _ : state) zolib(state, {"create", fresh("packed"), "tree", "--mode", "best", "-q"});
}

void unpackTree(benchmark::State& state) {
  begin();
  if (!fs::exists("tree.lib")) zolib(state, {"create", "tree.lib", "tree", "--mode", "best", "-q"});
  for (auto _ : state) zolib(state, {"extract", "tree.lib", "-q", "-o", fresh("out")});
}

void testTree(benchmark::State& state) {
  begin();
  if (!fs::exists("tree.lib")) zolib(state, {"create", "tree.lib", "tree", "--mode", "best", "-q"});
  for (auto _ : state) zolib(state, {"test", "tree.lib", "-q"});
}

void extractMany(benchmark::State& state) {
  begin();
  for (auto _ : state) zolib(state, {"extract", "10000.lib", "-q", "-o", fresh("out")});
}

// The first call packs all, and the others find nothing to do.
void syncUnchanged(benchmark::State& state) {
  begin();
  if (!fs::exists("sync.lib")) zolib(state, {"sync", "sync.lib", "10000", "--mode", "store", "-q"});
  for (auto _ : state) zolib(state, {"sync", "sync.lib", "10000", "-q"});
}

// What the platform alone takes to tell the sizes and times of the same files.
void plainWalk(benchmark::State& state) {
  begin();
  for (auto _ : state) {
    unsigned files = 0;
    for (int folder = 0; folder < 100; ++folder) {
      WIN32_FIND_DATAW found;
      const std::wstring pattern = L"10000\\folder" + std::to_wstring(folder) + L"\\*";
      const HANDLE find = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found,
                                           FindExSearchNameMatch, nullptr, 0);
      if (find == INVALID_HANDLE_VALUE) return state.SkipWithError("no folder");
      do {
        files += (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
      } while (FindNextFileW(find, &found));
      FindClose(find);
    }
    benchmark::DoNotOptimize(files);
  }
}

// What the platform alone takes to make the same files, each under another name first.
void plainFiles(benchmark::State& state) {
  begin();
  const std::string content(600, 'x');
  for (auto _ : state) {
    const std::string out = fresh("out");
    fs::create_directory(out);
    for (int i = 0; i < 10'000; ++i) {
      const fs::path folder = fs::path(out) / ("folder" + std::to_string(i % 100));
      if (i < 100) fs::create_directory(folder);
      const std::wstring name = (folder / ("part" + std::to_string(i))).wstring();
      const HANDLE file = CreateFileW((name + L".tmp").c_str(), GENERIC_WRITE, 0, nullptr,
                                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
      DWORD done = 0;
      WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &done, nullptr);
      const FILETIME time{0, 30'000'000};
      SetFileTime(file, &time, &time, &time);
      CloseHandle(file);
      MoveFileExW((name + L".tmp").c_str(), name.c_str(), 0);
    }
  }
}

// A member at the begin goes each time, so that all the rest has to move.
void reorganize(benchmark::State& state) {
  begin();
  static int s_gone = 0;
  for (auto _ : state) {
    state.PauseTiming();
    zolib(state, {"delete", "500.lib", "part" + std::to_string(s_gone++) + ".bin", "-q"});
    state.ResumeTiming();
    zolib(state, {"reorganize", "500.lib", "-q"});
  }
}

void copyFile(benchmark::State& state) {
  begin();
  for (auto _ : state) {
    if (!CopyFileW(L"500.lib", L"copy.lib", FALSE)) state.SkipWithError("no copy");
  }
}

BENCHMARK_CAPTURE(addOne, into_200MB, "500.lib")->Name("Add100KB/into_200MB/ours")->Iterations(5);
BENCHMARK_CAPTURE(addOne, into_2MB, "500_small.lib")
    ->Name("Add100KB/into_200MB/peer:into_2MB")
    ->Iterations(5);
BENCHMARK(listAll)->Name("List/10000/ours")->Arg(10000);
BENCHMARK(listAll)->Name("List/100000/ours")->Arg(100000);
BENCHMARK(readOne)->Name("ReadOne/of_100000/ours");
BENCHMARK(packTree)->Name("PackTree3000/best/ours")->Iterations(1)->Repetitions(3);
BENCHMARK(unpackTree)->Name("UnpackTree3000/ours")->Iterations(1)->Repetitions(3);
BENCHMARK(testTree)->Name("TestTree3000/ours");
BENCHMARK(extractMany)->Name("Extract10000/ours")->Iterations(1)->Repetitions(3);
BENCHMARK(syncUnchanged)->Name("SyncUnchanged/10000/ours");
BENCHMARK(plainWalk)->Name("SyncUnchanged/10000/peer:plain_walk");
BENCHMARK(plainFiles)->Name("Extract10000/peer:plain_calls")->Iterations(1)->Repetitions(3);
BENCHMARK(reorganize)->Name("Reorganize200MB/ours")->Iterations(1);
BENCHMARK(copyFile)->Name("Reorganize200MB/peer:file_copy")->Iterations(1);

}  // namespace
