// File names beside std::filesystem::path.
//
// Under mingw, std::filesystem::path keeps wide text, takes drives and network names for root
// names, splits into a list of component paths as it is constructed, and compares exactly; a URL is
// a relative path to it. "Decompose" asks both for directory, file name and extension, and our
// names for the drive, too.
#include <benchmark/benchmark.h>
#include <zo/files.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr size_t kNames = 100000;

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

std::vector<std::wstring> mixedNames(size_t count = kNames) {
  std::mt19937 random(1);
  const std::wstring starts[] = {L"C:\\",       L"D:\\Projects\\",      L"",
                                 L"..\\",       L"\\\\server\\share\\", L"ftp://host/",
                                 L"cd://label/"};
  const std::wstring levels[] = {L"parts", L"Standard DIN", L"2026", L"gears and shafts", L"a"};
  const std::wstring files[] = {L"bolt", L"assembly.final", L"m12x40_hexagon_head_screw", L"x"};
  const std::wstring extensions[] = {L".dwg", L".gpl", L"", L".val"};
  const auto one = [&](const auto& list) { return list[random() % std::size(list)]; };
  std::vector<std::wstring> names;
  names.reserve(count);
  while (names.size() < count) {
    std::wstring text = one(starts);
    const wchar_t delimiter = text.find(L"://") == std::wstring::npos ? L'\\' : L'/';
    for (size_t depth = random() % 5; depth > 0; --depth) (text += one(levels)) += delimiter;
    names.push_back(text + one(files) + one(extensions));
  }
  return names;
}

void parse(benchmark::State& state) {
  const std::vector<std::wstring> texts = mixedNames();
  for (auto _ : state) {
    for (const std::wstring& text : texts) {
      const ZoFileName file(text.c_str());
      benchmark::DoNotOptimize(file.drive());
      benchmark::DoNotOptimize(file.directory());
      benchmark::DoNotOptimize(file.fileName());
      benchmark::DoNotOptimize(file.extension());
    }
  }
}

void parseStd(benchmark::State& state) {
  const std::vector<std::wstring> texts = mixedNames();
  for (auto _ : state) {
    for (const std::wstring& text : texts) {
      const std::filesystem::path path(text.c_str());
      benchmark::DoNotOptimize(path.parent_path());
      benchmark::DoNotOptimize(path.stem());
      benchmark::DoNotOptimize(path.extension());
    }
  }
}

template <class Name>
std::vector<Name> namesOf(const std::vector<std::wstring>& texts) {
  std::vector<Name> names;
  names.reserve(texts.size());
  for (const std::wstring& text : texts) names.emplace_back(text.c_str());
  return names;
}

template <class Name>
void copy(benchmark::State& state) {
  const auto names = namesOf<Name>(mixedNames());
  for (auto _ : state) {
    for (const Name& original : names) {
      Name copied(original);
      benchmark::DoNotOptimize(copied);
    }
  }
}

enum class Pair { Copies, Alike, Different };

// Of 1000 names: each with a copy of it, with one parsed from the same text, with its neighbour.
template <class Name, Pair pair>
void compare(benchmark::State& state) {
  const std::vector<std::wstring> texts = mixedNames(1000);
  const std::vector<Name> names = namesOf<Name>(texts);
  std::vector<Name> others = pair == Pair::Copies ? names : namesOf<Name>(texts);
  if (pair == Pair::Different) std::rotate(others.begin(), others.begin() + 1, others.end());
  for (auto _ : state) {
    size_t equal = 0;
    for (size_t i = 0; i < names.size(); ++i) equal += names[i] == others[i] ? 1 : 0;
    benchmark::DoNotOptimize(equal);
  }
}

const bool registered = [] {
  name("ParseNames/100000/ours", parse);
  name("ParseNames/100000/peer:std::filesystem::path", parseStd);
  name("CopyNames/100000/ours", copy<ZoFileName>);
  name("CopyNames/100000/peer:std::filesystem::path", copy<std::filesystem::path>);
  name("CompareNames/copies/ours", compare<ZoFileName, Pair::Copies>);
  name("CompareNames/copies/peer:std::filesystem::path",
       compare<std::filesystem::path, Pair::Copies>);
  name("CompareNames/alike/ours", compare<ZoFileName, Pair::Alike>);
  name("CompareNames/alike/peer:std::filesystem::path",
       compare<std::filesystem::path, Pair::Alike>);
  name("CompareNames/different/ours", compare<ZoFileName, Pair::Different>);
  name("CompareNames/different/peer:std::filesystem::path",
       compare<std::filesystem::path, Pair::Different>);
  return true;
}();

}  // namespace
