// Strings beside std::wstring and the platform.
#include <windows.h>
// windows.h first: CompareStringW is a peer here.
#include <benchmark/benchmark.h>
#include <zo/strings.h>

#include <cwctype>
#include <functional>
#include <random>
#include <string>

namespace {

constexpr size_t kMiB = 1024 * 1024;

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)->UseRealTime();
}

// ---- Copy and destroy ----

template <class String, size_t length>
void copyAndDestroy(benchmark::State& state) {
  const String original(std::wstring(length, L'x').c_str());
  for (auto _ : state) {
    String copy(original);
    benchmark::DoNotOptimize(copy);
  }
}

// ---- Find ----

// Text over a to z where the letter q is rare and e is common; the pattern stands at the very end,
// or nowhere.
std::wstring searchText(unsigned int otherLettersPercent) {
  std::mt19937 random(1);
  std::wstring text(kMiB / sizeof(wchar_t), L' ');
  for (wchar_t& c : text) {
    c = random() % 4 == 0 ? L'e' : static_cast<wchar_t>(L'a' + random() % 16);
    if (random() % 100 < otherLettersPercent) c = static_cast<wchar_t>(0xE0 + random() % 0x1F);
  }
  return text;
}

enum class Pattern { RareFirst, CommonFirst, Absent };

std::wstring patternOf(Pattern pattern) {
  switch (pattern) {
    case Pattern::RareFirst:
      return L"queue";
    case Pattern::CommonFirst:
      return L"elements";
    default:
      return L"zyzzyva";
  }
}

std::wstring textFor(Pattern pattern, unsigned int otherLettersPercent = 0) {
  std::wstring text = searchText(otherLettersPercent);
  if (pattern != Pattern::Absent) {
    const std::wstring found = patternOf(pattern);
    text.replace(text.size() - found.size(), found.size(), found);
  }
  return text;
}

template <Pattern pattern>
void find(benchmark::State& state) {
  const ZoString text(textFor(pattern).c_str());
  const ZoString wanted(patternOf(pattern).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(text.index(wanted));
}

template <Pattern pattern>
void findStd(benchmark::State& state) {
  const std::wstring text = textFor(pattern);
  const std::wstring wanted = patternOf(pattern);
  for (auto _ : state) benchmark::DoNotOptimize(text.find(wanted));
}

template <unsigned int others>
void findFolded(benchmark::State& state) {
  const ZoString text(textFor(Pattern::RareFirst, others).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(text.index(L"QUEUE", 0, ZoString::ignoreCase));
}

template <unsigned int others>
void findFoldedLoop(benchmark::State& state) {
  const std::wstring text = textFor(Pattern::RareFirst, others);
  const std::wstring wanted = L"QUEUE";
  for (auto _ : state) {
    size_t at = 0;
    for (; at + wanted.size() <= text.size(); ++at) {
      size_t i = 0;
      while (i < wanted.size() && std::towlower(text[at + i]) == std::towlower(wanted[i])) ++i;
      if (i == wanted.size()) break;
    }
    benchmark::DoNotOptimize(at);
  }
}

// The mirror image of finding forwards: the pattern at the very start.
void findBack(benchmark::State& state) {
  std::wstring mirrored = searchText(0);
  mirrored.replace(0, 5, L"queue");
  const ZoString text(mirrored.c_str());
  for (auto _ : state) benchmark::DoNotOptimize(text.indexBack(L"queue"));
}

// ---- Hash and equality ----

std::wstring mixedCase(size_t length) {
  std::wstring text(length, L' ');
  for (size_t i = 0; i < length; ++i)
    text[i] = static_cast<wchar_t>((i % 3 ? L'a' : L'A') + i % 26);
  return text;
}

template <size_t length, ZoString::caseCompare cmp>
void hash(benchmark::State& state) {
  const ZoString text(mixedCase(length).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(text.hash(cmp));
}

template <size_t length>
void hashStd(benchmark::State& state) {
  const std::wstring text = mixedCase(length);
  for (auto _ : state) benchmark::DoNotOptimize(std::hash<std::wstring>()(text));
}

template <size_t length>
void hashUpperCopy(benchmark::State& state) {
  const std::wstring text = mixedCase(length);
  for (auto _ : state) {
    std::wstring upper = text;
    for (wchar_t& c : upper) c = static_cast<wchar_t>(std::towupper(c));
    benchmark::DoNotOptimize(std::hash<std::wstring>()(upper));
  }
}

template <bool equal>
std::pair<std::wstring, std::wstring> twentyCharacters() {
  const std::wstring text = mixedCase(20);
  std::wstring other = text;
  for (wchar_t& c : other) c = static_cast<wchar_t>(std::towupper(c));
  if (!equal) other[10] = L'#';
  return {text, other};
}

template <bool equal>
void equalFolded(benchmark::State& state) {
  const auto pair = twentyCharacters<equal>();
  const ZoString a(pair.first.c_str());
  const ZoString b(pair.second.c_str());
  for (auto _ : state) benchmark::DoNotOptimize(a.equals(b, ZoString::ignoreCase));
}

template <bool equal>
void equalPlatform(benchmark::State& state) {
  const auto [a, b] = twentyCharacters<equal>();
  for (auto _ : state) {
    benchmark::DoNotOptimize(CompareStringW(0x400, NORM_IGNORECASE, a.c_str(), 20, b.c_str(), 20) ==
                             CSTR_EQUAL);
  }
}

const bool registered = [] {
  name("CopyDestroy/40/ours", copyAndDestroy<ZoString, 40>);
  name("CopyDestroy/40/peer:std::wstring", copyAndDestroy<std::wstring, 40>);
  name("CopyDestroy/4000/ours", copyAndDestroy<ZoString, 4000>);
  name("CopyDestroy/4000/peer:std::wstring", copyAndDestroy<std::wstring, 4000>);
  name("Find1MiB/rare_first/ours", find<Pattern::RareFirst>);
  name("Find1MiB/rare_first/peer:std::wstring", findStd<Pattern::RareFirst>);
  name("Find1MiB/common_first/ours", find<Pattern::CommonFirst>);
  name("Find1MiB/common_first/peer:std::wstring", findStd<Pattern::CommonFirst>);
  name("Find1MiB/absent/ours", find<Pattern::Absent>);
  name("Find1MiB/absent/peer:std::wstring", findStd<Pattern::Absent>);
  name("FindIgnoringCase1MiB/ascii/ours", findFolded<0>);
  name("FindIgnoringCase1MiB/ascii/peer:towlower loop", findFoldedLoop<0>);
  name("FindIgnoringCase1MiB/5%_other/ours", findFolded<5>);
  name("FindIgnoringCase1MiB/5%_other/peer:towlower loop", findFoldedLoop<5>);
  name("FindBack1MiB/ours", findBack);
  name("FindBack1MiB/peer:own forward find", find<Pattern::RareFirst>);
  name("Hash/exact/20/ours", hash<20, ZoString::exact>);
  name("Hash/exact/20/peer:std::hash", hashStd<20>);
  name("Hash/exact/200/ours", hash<200, ZoString::exact>);
  name("Hash/exact/200/peer:std::hash", hashStd<200>);
  name("Hash/ignoreCase/20/ours", hash<20, ZoString::ignoreCase>);
  name("Hash/ignoreCase/20/peer:upper-cased copy", hashUpperCopy<20>);
  name("Hash/ignoreCase/200/ours", hash<200, ZoString::ignoreCase>);
  name("Hash/ignoreCase/200/peer:upper-cased copy", hashUpperCopy<200>);
  name("EqualIgnoringCase/equal/ours", equalFolded<true>);
  name("EqualIgnoringCase/equal/peer:CompareStringW", equalPlatform<true>);
  name("EqualIgnoringCase/unequal/ours", equalFolded<false>);
  name("EqualIgnoringCase/unequal/peer:CompareStringW", equalPlatform<false>);
  return true;
}();

}  // namespace
