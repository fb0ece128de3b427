// Layers and standards beside a dictionary, and `zoval diff` beside what a script does.
//
// The tool runs in this process, by its own code from the command line on: the start of a program
// under Wine would drown the rest. Its peer is a native Python, measured by headless_peers.py in
// the same run of bench/run without what its own start takes. That script also makes the data, in
// the folder that ZO_BENCH_DATA names.
#include <benchmark/benchmark.h>
#include <windows.h>
#include <zo_com.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "../tools/shared/console.h"
#include "../tools/shared/program.h"

namespace {

void require(bool isWell) {
  if (!isWell) std::abort();
}

// ---- Layers ----
constexpr int kCalls = 100;

std::vector<ZoString> layerNames() {
  std::vector<ZoString> names;
  for (int i = 0; i < kCalls; ++i) names.push_back(ZoString(L"Layer ") + ZoIntToStr(i));
  return names;
}

void ensureOurs(benchmark::State& state) {
  ZoStdLayer layers;
  std::vector<ZoLayerData> wanted;
  for (const ZoString& name : layerNames()) {
    wanted.push_back({.name = name});
    require(layers.add(wanted.back()) == 0);
  }
  for (auto _ : state)
    for (const ZoLayerData& layer : wanted) require(layers.ensure(layer) == 0);
}

// What a service needs at least that has its table in a dictionary: its guard, and a look-up.
void ensureDict(benchmark::State& state) {
  ZoSysObj service;
  ZoHashDict<ZoLayerData, ZoString> layers;
  const std::vector<ZoString> names = layerNames();
  for (const ZoString& name : names) require(layers.insertAt(name, {.name = name}) == 0);
  for (auto _ : state) {
    for (const ZoString& name : names) {
      require(service.waitToRead() == 0);
      require(layers.contains(name));
      service.doneReading();
    }
  }
}

// ---- Standards ----
constexpr int kStandards = 100000;

ZoVariant standardOf(const ZoString& name) {
  ZoVariant value(ZoVariant::kDict, ZoTypeCode::Standard);
  require(value.put(L"Name", ZoVariant(name)) == 0);
  require(value.put(L"Edition", L"2011") == 0);
  require(value.put(L"Title", L"A standard") == 0);
  return value;
}

ZoString nameOf(int i) { return ZoString(L"DIN EN ISO ") + ZoIntToStr(i); }

// Every hundredth of them, as users write it.
std::vector<ZoString> spellings() {
  std::vector<ZoString> all;
  for (int i = 0; i < kStandards; i += kStandards / kCalls) {
    const ZoString number = ZoIntToStr(i);
    constexpr const wchar_t* kForms[] = {L"din en iso ", L"ISO-", L"iso", L"BS EN ISO 0"};
    all.push_back(ZoString(kForms[all.size() % 4]) + number);
  }
  return all;
}

ZoStdStandardMgr& standards() {
  static ZoStdStandardMgr* const manager = [] {
    auto* const made = new ZoStdStandardMgr;
    ZoVariant all(ZoVariant::kSequence);
    ZoVariant::Sequence& sequence = all;
    for (int i = 0; i < kStandards; ++i) require(sequence.append(standardOf(nameOf(i))) == 0);
    require(made->add(all, L"bench") == 0);
    return made;
  }();
  return *manager;
}

void standardOurs(benchmark::State& state) {
  ZoStdStandardMgr& manager = standards();
  const std::vector<ZoString> names = spellings();
  for (auto _ : state) {
    for (const ZoString& name : names) {
      ZoVariant value;
      require(manager.getStandard(name, value) == 0);
      benchmark::DoNotOptimize(value);
    }
  }
}

// The exact key, and a copy that another thread may have, too.
void standardDict(benchmark::State& state) {
  static ZoHashDict<ZoVariant, ZoString>& dict = *[] {
    auto* const made = new ZoHashDict<ZoVariant, ZoString>;
    for (int i = 0; i < kStandards; ++i)
      require(made->insertAt(nameOf(i), standardOf(nameOf(i))) == 0);
    return made;
  }();
  std::vector<ZoString> names;
  for (int i = 0; i < kStandards; i += kStandards / kCalls) names.push_back(nameOf(i));
  for (auto _ : state) {
    for (const ZoString& name : names) {
      const ZoVariant* const found = dict.at(name);
      require(found != nullptr);
      ZoVariant value = found->copy();
      benchmark::DoNotOptimize(value);
    }
  }
}

// ---- zoval diff ----
void begin() {
  static const bool s_begun = [] {
    const char* data = std::getenv("ZO_BENCH_DATA");
    require(data && zoComDllAttach() == 0);
    std::filesystem::current_path("Z:" + std::string(data));
    SetStdHandle(STD_OUTPUT_HANDLE, CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                                                OPEN_EXISTING, 0, nullptr));
    return true;
  }();
  benchmark::DoNotOptimize(s_begun);
}

int zoval(const std::vector<std::string>& arguments) {
  zolib::Console console;
  return zolib::runCommandLine(arguments, console);
}

void diff(benchmark::State& state, const std::string& extension) {
  begin();
  for (const std::string name : {"a", "b"})
    if (extension != "json")
      require(zoval({"convert", name + ".json", name + "." + extension}) == 0);
  for (auto _ : state)
    if (zoval({"diff", "a." + extension, "b." + extension}) != 1)
      return state.SkipWithError("no difference found");
}
void diffJson(benchmark::State& state) { diff(state, "json"); }
void diffText(benchmark::State& state) { diff(state, "zov"); }
void diffArchive(benchmark::State& state) { diff(state, "zoa"); }

BENCHMARK(ensureOurs)->Name("EnsureLayer/100/ours");
BENCHMARK(ensureDict)->Name("EnsureLayer/100/peer:ZoDict");
BENCHMARK(standardOurs)->Name("StandardOf100000/100/ours");
BENCHMARK(standardDict)->Name("StandardOf100000/100/peer:ZoDict");
BENCHMARK(diffJson)->Name("Diff100000/json/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(diffText)->Name("Diff100000/text/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(diffArchive)->Name("Diff100000/archive/ours")->Unit(benchmark::kMillisecond);

}  // namespace
