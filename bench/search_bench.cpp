// Finding files beside what the platform has for it.
#include <benchmark/benchmark.h>
#include <windows.h>
#include <zo/files.h>
#include <zo/system.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kFolders = 20, kFiles = 50, kMembers = 100000, kMacros = 20;

void check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "search_bench: %s\n", what);
  std::exit(1);
}

// Twenty folders of fifty files and a library of many members, for the whole program.
class World {
 public:
  World() {
    check(zoComDllAttach() == 0, "attach");
    root_ = std::filesystem::temp_directory_path() /
            (L"zo-search-bench-" + std::to_wstring(GetCurrentProcessId()));
    for (int i = 0; i < kFolders; ++i) {
      const auto folder = root_ / (L"folder" + std::to_wstring(i));
      std::filesystem::create_directories(folder);
      for (int k = 0; k < kFiles; ++k)
        std::ofstream(folder / (std::to_wstring(i) + L"part" + std::to_wstring(k) + L".dwg"));
      folders_.push_back(folder.wstring());
      all_ += folder.wstring() + L";";
    }
  }
  ~World() {
    zoComDllDetach();
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }

  const std::vector<std::wstring>& folders() const { return folders_; }
  const std::wstring& all() const { return all_; }  // as SearchPathW takes them
  std::unique_ptr<ZoStdFileSearch> search() const {
    auto search = std::make_unique<ZoStdFileSearch>();
    for (const std::wstring& folder : folders_)
      check(search->addPath(ZoFileName(folder), L"bench") == 0, "addPath");
    return search;
  }
  const ZoFileName& library() {
    if (!library_.isEmpty()) return library_;
    const ZoFileName source(folders_[0] + L"\\0part0.dwg");
    library_ = ZoFileName((root_ / L"parts.lib").wstring());
    ZoLibrary made;
    check(made.open(library_, ZoFile::kReadWrite, ZoFile::kCreateNew) == 0, "library");
    check(made.beginBatch() == 0, "batch");
    for (int i = 0; i < kMembers; ++i)
      check(made.addFile(source, ZoFileName(member(i)), false, ZoLibrary::kStore) == 0, "addFile");
    check(made.endBatch() == 0, "batch");
    return library_;
  }
  static std::wstring member(int i) { return L"parts/member" + std::to_wstring(i) + L".dwg"; }

 private:
  std::filesystem::path root_;
  std::vector<std::wstring> folders_;
  std::wstring all_;
  ZoFileName library_;
};

World& world() {
  static World made;
  return made;
}

const wchar_t* wanted(bool hit) { return hit ? L"12part7.dwg" : L"nothing.dwg"; }

void findAgain(benchmark::State& state, bool hit) {
  const auto search = world().search();
  const ZoFileName name(wanted(hit));
  ZoFileName found;
  for (int i = 0; i < 100; ++i) static_cast<void>(search->find(name, found));
  for (auto _ : state) check((search->find(name, found) == 0) == hit, "find");
}

void searchPath(benchmark::State& state, bool hit) {
  wchar_t found[MAX_PATH];
  for (auto _ : state)
    check((SearchPathW(world().all().c_str(), wanted(hit), nullptr, MAX_PATH, found, nullptr) !=
           0) == hit,
          "SearchPathW");
}

// A search that was never asked before.
void findFirst(benchmark::State& state) {
  const ZoFileName name(wanted(false));
  ZoFileName found;
  for (auto _ : state) {
    state.PauseTiming();
    auto search = world().search();
    state.ResumeTiming();
    check(search->find(name, found) != 0, "find");
    state.PauseTiming();
    search.reset();
    state.ResumeTiming();
  }
}

// Each folder, and the current one, as anyone would ask them.
void askEach(benchmark::State& state) {
  for (auto _ : state) {
    bool found = GetFileAttributesW(wanted(false)) != INVALID_FILE_ATTRIBUTES;
    for (const std::wstring& folder : world().folders())
      found = found || GetFileAttributesW((folder + L"\\" + wanted(false)).c_str()) !=
                           INVALID_FILE_ATTRIBUTES;
    check(!found, "GetFileAttributesW");
  }
}

void findMember(benchmark::State& state) {
  ZoStdFileSearch search;
  check(search.addLibrary(world().library(), L"bench") == 0, "addLibrary");
  ZoFileName found;
  int i = 0;
  for (int k = 0; k < 100; ++k) check(search.find(L"none.dwg", found) != 0, "find");
  for (auto _ : state) {
    const ZoFileName name(World::member(i = (i + 7919) % kMembers));
    check(search.find(name, found) == 0, "find");
  }
}

void contains(benchmark::State& state) {
  ZoLibrary library;
  check(library.open(world().library()) == 0, "open");
  // The first question is answered without the index, which the second one makes.
  for (const wchar_t* none : {L"none", L"none at all"}) check(!library.contains(none), "contains");
  int i = 0;
  for (auto _ : state) {
    const ZoFileName name(World::member(i = (i + 7919) % kMembers));
    check(library.contains(name), "contains");
  }
}

std::wstring macro(int i) { return L"ZoBenchMacro" + std::to_wstring(i); }
std::wstring macroValue(int i) { return L"C:\\standards\\folder" + std::to_wstring(i); }

void expandMacros(benchmark::State& state) {
  ZoStdMacroLib macros;
  for (int i = 0; i < kMacros; ++i)
    check(macros.setMacro(ZoString(macro(i)), ZoString(macroValue(i)), L"bench") == 0, "setMacro");
  std::vector<ZoFileName> names;
  for (int i = 0; i < kMacros; ++i)
    names.emplace_back(L"$" + macro(i) + L"'bolts\\m8\\hexagon.dwg");
  int i = 0;
  for (auto _ : state) {
    ZoFileName name = names[i = (i + 1) % kMacros];
    check(macros.expand(name) == 0, "expand");
    benchmark::DoNotOptimize(name.fullName());
  }
}

void expandEnvironment(benchmark::State& state) {
  for (int i = 0; i < kMacros; ++i)
    SetEnvironmentVariableW(macro(i).c_str(), macroValue(i).c_str());
  std::vector<std::wstring> names;
  for (int i = 0; i < kMacros; ++i) names.push_back(L"%" + macro(i) + L"%\\bolts\\m8\\hexagon.dwg");
  int i = 0;
  wchar_t expanded[MAX_PATH];
  for (auto _ : state) {
    check(ExpandEnvironmentStringsW(names[i = (i + 1) % kMacros].c_str(), expanded, MAX_PATH) != 0,
          "expand");
    benchmark::DoNotOptimize(expanded[0]);
  }
}

void pair(const std::string& work, void (*ours)(benchmark::State&), const std::string& peer,
          void (*theirs)(benchmark::State&)) {
  benchmark::RegisterBenchmark((work + "/ours").c_str(), ours)->UseRealTime();
  benchmark::RegisterBenchmark((work + "/peer:" + peer).c_str(), theirs)->UseRealTime();
}

const bool registered = [] {
  pair(
      "FindAgain/hit", [](auto& s) { findAgain(s, true); }, "SearchPathW",
      [](auto& s) { searchPath(s, true); });
  pair(
      "FindAgain/miss", [](auto& s) { findAgain(s, false); }, "SearchPathW",
      [](auto& s) { searchPath(s, false); });
  pair("FindFirst/miss", findFirst, "asking_each_folder", askEach);
  pair("FindMember/100000", findMember, "ZoLibrary::contains", contains);
  pair("ExpandMacro", expandMacros, "ExpandEnvironmentStringsW", expandEnvironment);
  return true;
}();

}  // namespace
