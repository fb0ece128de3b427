// Regular expressions beside PCRE2 called directly, Boost.Regex and the standard library's: all
// matches in 2,000,000 units of C source, and compiling.
#include <benchmark/benchmark.h>
#include <pcre2.h>
#include <zo/parse.h>
#include <zo/strings.h>

#include <boost/regex.hpp>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr size_t kUnits = 2'000'000;

const std::wstring& source() {
  static const std::wstring text = [] {
    std::wstring all;
    for (const char* const name :
         {"pcre2_match.c", "pcre2_compile.c", "pcre2_dfa_match.c", "pcre2test.c", "pcre2grep.c"}) {
      std::ifstream file(std::string(ZO_BENCH_SOURCES) + name, std::ios::binary);
      all.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    while (!all.empty() && all.size() < kUnits) all += std::wstring(all);
    return all.substr(0, kUnits);
  }();
  return text;
}

// ---- The engines: all matches of a pattern ----

size_t findOurs(const ZoRegExp& expression, const ZoString& text) {
  size_t found = 0;
  ZoSearch search(expression, text);
  while (search.next()) found += search.length() != 0;
  return found;
}

struct Pcre2 {
  explicit Pcre2(const std::wstring& pattern) {
    int error = 0;
    PCRE2_SIZE at = 0;
    code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(),
                         PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF, &error, &at, nullptr);
    pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
  }
  Pcre2(const Pcre2&) = delete;
  Pcre2& operator=(const Pcre2&) = delete;
  ~Pcre2() { pcre2_code_free(code); }
  size_t find(const std::wstring& text) const {
    pcre2_match_data* const data = pcre2_match_data_create_from_pattern(code, nullptr);
    const PCRE2_SIZE* const places = pcre2_get_ovector_pointer(data);
    size_t found = 0;
    for (PCRE2_SIZE from = 0;; from = places[1]) {
      const std::uint32_t options = from > 0 && places[0] == places[1] ? PCRE2_NOTEMPTY_ATSTART : 0;
      if (pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), from, options,
                      data, nullptr) < 0) {
        break;
      }
      found += places[0] != places[1];
    }
    pcre2_match_data_free(data);
    return found;
  }
  pcre2_code* code;
};

template <class Iterator, class Expression>
size_t findBy(const Expression& expression, const std::wstring& text) {
  size_t found = 0;
  for (Iterator i(text.begin(), text.end(), expression); i != Iterator(); ++i)
    found += i->length(0) != 0;
  return found;
}

// ---- Find ----

struct Work {
  const char* name;
  const wchar_t* pattern;
};
constexpr Work kWorks[] = {
    {"literal", L"PCRE2_ERROR"},
    {"digits", L"[0-9]+"},
    {"names", L"[A-Za-z_][A-Za-z0-9_]*"},
    {"words", L"(int|char|void|long|double)"},
    {"groups", L"([a-z]+)=([^;]*);"},
    {"quoted", L"\"[^\"\\\\]*(?:\\\\.[^\"\\\\]*)*\""},
    {"suffix", L"[a-z]*ing"},
};

void expectSame(benchmark::State& state, size_t found, const std::wstring& pattern) {
  static std::vector<std::pair<std::wstring, size_t>> known;
  for (const auto& [name, count] : known)
    if (name == pattern && count + 1 < found) state.SkipWithError("the engines disagree");
  known.emplace_back(pattern, found);
}

template <class Find>
void find(const Work& work, const std::string& who, Find once) {
  const std::string name = std::string("Find2M/") + work.name + "/" + who;
  benchmark::RegisterBenchmark(name.c_str(),
                               [work, once](benchmark::State& state) {
                                 size_t found = 0;
                                 for (auto _ : state) found = once();
                                 if (source().empty() || found == 0)
                                   state.SkipWithError("nothing was found");
                                 expectSame(state, found, work.pattern);
                               })
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

// ---- Compile ----

std::vector<std::wstring> shortPatterns() {
  const std::wstring parts[] = {L"[0-9]+",    L"(a|b)*c",  L"\\w+@\\w+", L"M[0-9]+x[0-9]+",
                                L"^\\s*#",    L"[^,;]*",   L"x{2,5}",    L"(in|out)put",
                                L"\\bend\\b", L".*\\.dwg$"};
  std::vector<std::wstring> patterns;
  for (const std::wstring& one : parts)
    for (const std::wstring& two : parts) patterns.push_back(one + two);
  return patterns;
}

template <class Compile>
void compile(const char* name, Compile once) {
  benchmark::RegisterBenchmark(name,
                               [once](benchmark::State& state) {
                                 const std::vector<std::wstring> patterns = shortPatterns();
                                 for (auto _ : state)
                                   for (const std::wstring& pattern : patterns) once(pattern);
                               })
      ->UseRealTime()
      ->Unit(benchmark::kMicrosecond);
}

const bool s_registered = [] {
  for (const Work& work : kWorks) {
    find(work, "ours", [expression = ZoRegExp(work.pattern), text = ZoString(source())] {
      return findOurs(expression, text);
    });
    find(work, "peer:pcre2", [expression = std::make_shared<Pcre2>(work.pattern)] {
      return expression->find(source());
    });
    find(work, "peer:boost", [expression = boost::wregex(work.pattern)] {
      return findBy<boost::wsregex_iterator>(expression, source());
    });
    find(work, "peer:std::wregex", [expression = std::wregex(work.pattern, std::regex::optimize)] {
      return findBy<std::wsregex_iterator>(expression, source());
    });
  }
  compile("Compile100/ours", [](const std::wstring& pattern) {
    benchmark::DoNotOptimize(ZoRegExp(pattern).isValid());
  });
  compile("Compile100/peer:pcre2",
          [](const std::wstring& pattern) { benchmark::DoNotOptimize(Pcre2(pattern).code); });
  compile("Compile100/peer:boost", [](const std::wstring& pattern) {
    benchmark::DoNotOptimize(boost::wregex(pattern).mark_count());
  });
  compile("Compile100/peer:std::wregex", [](const std::wstring& pattern) {
    benchmark::DoNotOptimize(std::wregex(pattern, std::regex::optimize).mark_count());
  });
  return true;
}();

}  // namespace
