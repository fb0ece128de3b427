// A variant tree of 100,000 values as JSON beside nlohmann-json of the same tree.
#include <benchmark/benchmark.h>
#include <zo/variant.h>
#include <zo/xml.h>

#include <nlohmann/json.hpp>
#include <string>

namespace {

using Dict = ZoHashDict<ZoVariant, ZoString>;

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

// 10 catalogues of 100 parts with 100 values each. Typed: a third of them are lengths, which JSON
// has no form of its own for.
ZoVariant tree(bool isTyped) {
  Dict root;
  for (int c = 0; c < 10; ++c) {
    Dict catalog;
    for (int p = 0; p < 100; ++p) {
      Dict part;
      for (int i = 0; i < 100; ++i) {
        const ZoString key(L"property " + std::to_wstring(i * 7919 % 1000));
        if (i % 3 == 0) {
          static_cast<void>(part.insertAt(key, ZoVariant(i)));
        } else if (i % 3 == 1) {
          const auto code = isTyped ? ZoTypeCode::Length : ZoTypeCode::Real;
          static_cast<void>(part.insertAt(key, ZoVariant(i / 7.0, code)));
        } else {
          static_cast<void>(part.insertAt(key, ZoVariant(L"DIN EN ISO 4762 - M8")));
        }
      }
      static_cast<void>(catalog.insertAt(ZoString(std::to_wstring(p)), ZoVariant(std::move(part))));
    }
    static_cast<void>(root.insertAt(ZoString(std::to_wstring(c)), ZoVariant(std::move(catalog))));
  }
  return ZoVariant(std::move(root));
}

// The same values and types, as ours writes them.
nlohmann::json peerTree(bool isTyped) {
  ZoString text;
  static_cast<void>(ZoJson::format(tree(isTyped), text));
  return nlohmann::json::parse(text.toUtf8());
}

template <bool isTyped>
void write(benchmark::State& state) {
  const ZoVariant value = tree(isTyped);
  for (auto _ : state) {
    ZoString text;
    static_cast<void>(ZoJson::format(value, text));
    benchmark::DoNotOptimize(text);
  }
}
template <bool isTyped>
void dump(benchmark::State& state) {
  const nlohmann::json value = peerTree(isTyped);
  for (auto _ : state) benchmark::DoNotOptimize(value.dump(2));
}

// From UTF-8, as both find it in a file.
template <bool isTyped>
void read(benchmark::State& state) {
  ZoString text;
  static_cast<void>(ZoJson::format(tree(isTyped), text));
  const std::string bytes = text.toUtf8();
  for (auto _ : state) {
    ZoVariant value;
    if (ZoJson::parse(bytes, value) != 0) state.SkipWithError("not read");
    benchmark::DoNotOptimize(value);
  }
}
template <bool isTyped>
void parse(benchmark::State& state) {
  const std::string bytes = peerTree(isTyped).dump(2);
  for (auto _ : state) benchmark::DoNotOptimize(nlohmann::json::parse(bytes));
}

const bool registered = [] {
  name("Tree100000/write/ours", write<false>);
  name("Tree100000/write/peer:nlohmann-json", dump<false>);
  name("Tree100000/read/ours", read<false>);
  name("Tree100000/read/peer:nlohmann-json", parse<false>);
  name("Typed100000/write/ours", write<true>);
  name("Typed100000/write/peer:nlohmann-json", dump<true>);
  name("Typed100000/read/ours", read<true>);
  name("Typed100000/read/peer:nlohmann-json", parse<true>);
  return true;
}();

}  // namespace
