// Variants beside std::variant, maps of std::any and nlohmann-json; numbers as text beside the
// runtime library.
#include <benchmark/benchmark.h>
#include <zo/strings.h>
#include <zo/variant.h>

#include <any>
#include <array>
#include <bit>
#include <cstdint>
#include <cwchar>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <variant>
#include <vector>

namespace {

using StdVariant = std::variant<std::monostate, int, std::int64_t, double, std::wstring, void*>;

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)->UseRealTime();
}

// ---- One value ----

int sample(int) { return 4711; }
double sample(double) { return 47.11; }
std::wstring sample(const std::wstring&) { return std::wstring(40, L'x'); }
ZoString sample(const ZoString&) { return ZoString(sample(std::wstring())); }

template <class Variant, class Value>
void construct(benchmark::State& state) {
  Value value = sample(Value());
  for (auto _ : state) {
    benchmark::DoNotOptimize(value);
    Variant made(value);
    benchmark::DoNotOptimize(made);
  }
}

// Construction, copying and destruction of two values.
template <class Variant, class Value>
void copyAndDestroy(benchmark::State& state) {
  Value value = sample(Value());
  Variant original(value);
  for (auto _ : state) {
    benchmark::DoNotOptimize(original);
    Variant copy(original);
    benchmark::DoNotOptimize(copy);
  }
}

// ---- A tree of 100,000 values: 10 catalogues of 100 parts with 100 values each ----

using OurDict = ZoHashDict<ZoVariant, ZoString>;
using AnyMap = std::map<std::wstring, std::any>;

const std::vector<std::wstring>& keys() {
  static const std::vector<std::wstring> all = [] {
    std::vector<std::wstring> made;
    for (int i = 0; i < 100; ++i) made.push_back(L"property " + std::to_wstring(i * 7919 % 1000));
    return made;
  }();
  return all;
}

// Each side has its keys and its texts in its own type.
const std::vector<ZoString>& ourKeys() {
  static const std::vector<ZoString> all = [] {
    std::vector<ZoString> made;
    for (const std::wstring& key : keys()) made.emplace_back(key.c_str());
    return made;
  }();
  return all;
}

const std::wstring& textValue() {
  static const std::wstring text = L"DIN EN ISO 4762 - M8";
  return text;
}

const ZoString& ourTextValue() {
  static const ZoString text(textValue().c_str());
  return text;
}

OurDict ourPart() {
  OurDict part;
  for (int i = 0; i < 100; ++i) {
    const ZoString& key = ourKeys()[i];
    switch (i % 3) {
      case 0:
        part.insertAt(key, ZoVariant(i));
        break;
      case 1:
        part.insertAt(key, ZoVariant(i / 7.0, ZoTypeCode::Length));
        break;
      default:
        part.insertAt(key, ZoVariant(ourTextValue()));
        break;
    }
  }
  return part;
}

AnyMap anyPart() {
  AnyMap part;
  for (int i = 0; i < 100; ++i) {
    const std::wstring& key = keys()[i];
    switch (i % 3) {
      case 0:
        part.emplace(key, i);
        break;
      case 1:
        part.emplace(key, i / 7.0);
        break;
      default:
        part.emplace(key, textValue());
        break;
    }
  }
  return part;
}

ZoVariant ourTree() {
  OurDict root;
  for (int c = 0; c < 10; ++c) {
    OurDict catalog;
    for (int p = 0; p < 100; ++p) catalog.insertAt(ourKeys()[p], ZoVariant(ourPart()));
    root.insertAt(ourKeys()[c], ZoVariant(std::move(catalog)));
  }
  return ZoVariant(std::move(root));
}

AnyMap anyTree() {
  AnyMap root;
  for (int c = 0; c < 10; ++c) {
    AnyMap catalog;
    for (int p = 0; p < 100; ++p) catalog.emplace(keys()[p], anyPart());
    root.emplace(keys()[c], std::move(catalog));
  }
  return root;
}

void build(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ourTree());
}

void buildAny(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(anyTree());
}

void copy(benchmark::State& state) {
  const ZoVariant tree = ourTree();
  for (auto _ : state) {
    ZoVariant copied(tree);
    benchmark::DoNotOptimize(copied);
  }
}

void copyAny(benchmark::State& state) {
  const AnyMap tree = anyTree();
  for (auto _ : state) {
    AnyMap copied(tree);
    benchmark::DoNotOptimize(copied);
  }
}

// Which of the ten, the hundred and the hundred keys, for a thousand look-ups.
const std::vector<std::array<int, 3>>& paths() {
  static const std::vector<std::array<int, 3>> all = [] {
    std::mt19937 random(21);
    std::vector<std::array<int, 3>> made(1000);
    for (auto& [c, p, i] : made) {
      c = static_cast<int>(random() % 10);
      p = static_cast<int>(random() % 100);
      i = static_cast<int>(random() % 33 * 3);
    }
    return made;
  }();
  return all;
}

void lookUp(benchmark::State& state) {
  const ZoVariant tree = ourTree();
  for (auto _ : state) {
    int sum = 0;
    for (const auto& [c, p, i] : paths())
      sum += tree.at(keys()[c])->at(keys()[p])->at(keys()[i])->asInt();
    benchmark::DoNotOptimize(sum);
  }
}

void lookUpAny(benchmark::State& state) {
  const AnyMap tree = anyTree();
  for (auto _ : state) {
    int sum = 0;
    for (const auto& [c, p, i] : paths()) {
      const auto& catalog = *std::any_cast<AnyMap>(&tree.find(keys()[c])->second);
      const auto& part = *std::any_cast<AnyMap>(&catalog.find(keys()[p])->second);
      sum += *std::any_cast<int>(&part.find(keys()[i])->second);
    }
    benchmark::DoNotOptimize(sum);
  }
}

// ---- The text form of that tree ----

nlohmann::json toJson(const ZoVariant& value) {
  const auto narrow = [](const ZoString& text) { return std::string(text.begin(), text.end()); };
  switch (value.type()) {
    case ZoVariant::kDict: {
      nlohmann::json object = nlohmann::json::object();
      for (const auto [key, element] : *value.asDict()) object[narrow(key)] = toJson(element);
      return object;
    }
    case ZoVariant::kInt:
      return value.asInt();
    case ZoVariant::kReal:
      return value.asReal();
    default:
      return narrow(value.asString());
  }
}

void format(benchmark::State& state) {
  const ZoVariant tree = ourTree();
  for (auto _ : state) benchmark::DoNotOptimize(tree.format());
}

void dump(benchmark::State& state) {
  const nlohmann::json tree = toJson(ourTree());
  for (auto _ : state) benchmark::DoNotOptimize(tree.dump(1, '\t'));
}

void parse(benchmark::State& state) {
  const ZoString text = ourTree().format();
  for (auto _ : state) {
    ZoVariant tree;
    tree.parse(text);
    benchmark::DoNotOptimize(tree);
  }
}

void parseJson(benchmark::State& state) {
  const std::string text = toJson(ourTree()).dump(1, '\t');
  for (auto _ : state) benchmark::DoNotOptimize(nlohmann::json::parse(text));
}

// ---- Numbers as text ----

enum class Numbers { Measures, Random };

// Lengths and the like with up to three decimals, or any finite bit pattern.
template <Numbers kind>
std::vector<double> numbers() {
  std::mt19937_64 random(22);
  std::vector<double> made;
  while (made.size() < 1000) {
    const double value = kind == Numbers::Measures
                             ? static_cast<double>(random() % 10'000'000) / 1000
                             : std::bit_cast<double>(random());
    if (value - value == 0) made.push_back(value);
  }
  return made;
}

template <Numbers kind>
void print(benchmark::State& state) {
  const std::vector<double> values = numbers<kind>();
  wchar_t buffer[ZoNumberTextSize];
  for (auto _ : state) {
    for (const double value : values) {
      ZoRealToStr(value, buffer);
      benchmark::DoNotOptimize(buffer);
    }
  }
}

template <Numbers kind>
void printRuntime(benchmark::State& state) {
  const std::vector<double> values = numbers<kind>();
  wchar_t buffer[64];
  for (auto _ : state) {
    for (const double value : values) {
      std::swprintf(buffer, 64, L"%.17g", value);
      benchmark::DoNotOptimize(buffer);
    }
  }
}

template <Numbers kind>
std::vector<std::wstring> texts() {
  std::vector<std::wstring> made;
  for (const double value : numbers<kind>()) made.emplace_back(ZoRealToStr(value).view());
  return made;
}

template <Numbers kind>
void read(benchmark::State& state) {
  const std::vector<std::wstring> all = texts<kind>();
  for (auto _ : state) {
    for (const std::wstring& text : all) {
      double value = 0;
      benchmark::DoNotOptimize(ZoStrToReal(text, value));
      benchmark::DoNotOptimize(value);
    }
  }
}

template <Numbers kind>
void readRuntime(benchmark::State& state) {
  const std::vector<std::wstring> all = texts<kind>();
  for (auto _ : state) {
    for (const std::wstring& text : all)
      benchmark::DoNotOptimize(std::wcstod(text.c_str(), nullptr));
  }
}

const bool registered = [] {
  name("Construct/int/ours", construct<ZoVariant, int>);
  name("Construct/int/peer:std::variant", construct<StdVariant, int>);
  name("Construct/real/ours", construct<ZoVariant, double>);
  name("Construct/real/peer:std::variant", construct<StdVariant, double>);
  name("Construct/string40/ours", construct<ZoVariant, ZoString>);
  name("Construct/string40/peer:std::variant", construct<StdVariant, std::wstring>);
  name("CopyDestroy/int/ours", copyAndDestroy<ZoVariant, int>);
  name("CopyDestroy/int/peer:std::variant", copyAndDestroy<StdVariant, int>);
  name("CopyDestroy/real/ours", copyAndDestroy<ZoVariant, double>);
  name("CopyDestroy/real/peer:std::variant", copyAndDestroy<StdVariant, double>);
  name("CopyDestroy/string40/ours", copyAndDestroy<ZoVariant, ZoString>);
  name("CopyDestroy/string40/peer:std::variant", copyAndDestroy<StdVariant, std::wstring>);
  name("Tree100000/build/ours", build);
  name("Tree100000/build/peer:std::map of std::any", buildAny);
  name("Tree100000/copy/ours", copy);
  name("Tree100000/copy/peer:std::map of std::any", copyAny);
  name("Tree100000/look_up/ours", lookUp);
  name("Tree100000/look_up/peer:std::map of std::any", lookUpAny);
  name("Text100000/write/ours", format);
  name("Text100000/write/peer:nlohmann-json", dump);
  name("Text100000/read/ours", parse);
  name("Text100000/read/peer:nlohmann-json", parseJson);
  name("Numbers/print/measures/ours", print<Numbers::Measures>);
  name("Numbers/print/measures/peer:swprintf", printRuntime<Numbers::Measures>);
  name("Numbers/print/random/ours", print<Numbers::Random>);
  name("Numbers/print/random/peer:swprintf", printRuntime<Numbers::Random>);
  name("Numbers/read/measures/ours", read<Numbers::Measures>);
  name("Numbers/read/measures/peer:wcstod", readRuntime<Numbers::Measures>);
  name("Numbers/read/random/ours", read<Numbers::Random>);
  name("Numbers/read/random/peer:wcstod", readRuntime<Numbers::Random>);
  return true;
}();

}  // namespace
