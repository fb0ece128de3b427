// Archives over memory beside cereal's binary archives of equivalent values, and the dump beside a
// wide string stream with the same formats.
#include <benchmark/benchmark.h>
#include <zo/archive.h>
#include <zo/variant.h>

#include <cereal/archives/binary.hpp>
#include <cereal/types/map.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/variant.hpp>
#include <cereal/types/vector.hpp>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

namespace {

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)->UseRealTime();
}

const wchar_t* const kText = L"DIN EN ISO 4762 - M8";

// ---- 100,000 values of mixed types ----

constexpr int kRounds = 10000;  // of ten values each

struct Values {
  bool flag = true;
  unsigned char byte = 7;
  unsigned short half = 4711;
  int number = -12;
  unsigned int word = 0xC0FFEE;
  std::int64_t id = 1234567890123;
  double length = 47.11, width = 8.15, height = -0.5;
};

void writeMixed(benchmark::State& state) {
  const ZoString text(kText);
  const Values v;
  for (auto _ : state) {
    ZoMemoryWriteArchive archive;
    ZoArchive& to = archive;
    for (int i = 0; i < kRounds; ++i) {
      to << v.flag << v.byte << v.half << v.number << v.word << v.id;
      to << v.length << v.width << v.height << text;
    }
    benchmark::DoNotOptimize(archive.bytes().data());
  }
}

std::string cerealMixed() {
  const std::wstring text(kText);
  Values v;
  std::ostringstream out;
  cereal::BinaryOutputArchive to(out);
  for (int i = 0; i < kRounds; ++i)
    to(v.flag, v.byte, v.half, v.number, v.word, v.id, v.length, v.width, v.height, text);
  return std::move(out).str();
}
void cerealWriteMixed(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(cerealMixed());
}

void readMixed(benchmark::State& state) {
  ZoMemoryWriteArchive stored;
  const Values w;
  for (int i = 0; i < kRounds; ++i) {
    stored << w.flag << w.byte << w.half << w.number << w.word << w.id;
    stored << w.length << w.width << w.height << ZoString(kText);
  }
  Values v;
  ZoString text;
  for (auto _ : state) {
    ZoMemoryReadArchive archive(stored.bytes());
    ZoArchive& from = archive;
    for (int i = 0; i < kRounds; ++i) {
      from >> v.flag >> v.byte >> v.half >> v.number >> v.word >> v.id;
      from >> v.length >> v.width >> v.height >> text;
    }
    benchmark::DoNotOptimize(v);
  }
}
void cerealReadMixed(benchmark::State& state) {
  std::istringstream in(cerealMixed());
  Values v;
  std::wstring text;
  for (auto _ : state) {
    in.clear();
    in.seekg(0);
    cereal::BinaryInputArchive from(in);
    for (int i = 0; i < kRounds; ++i)
      from(v.flag, v.byte, v.half, v.number, v.word, v.id, v.length, v.width, v.height, text);
    benchmark::DoNotOptimize(v);
  }
}

// ---- A tree of 100,000 values: 10 catalogues of 100 parts with 100 values each ----

// As a ZoVariant: a value of some kinds with a code and flags.
struct PeerValue {
  using Map = std::map<std::wstring, PeerValue>;
  std::uint32_t code = 0, flags = 0;
  std::variant<std::monostate, int, double, std::wstring, std::vector<PeerValue>, Map> value;

  template <class Archive>
  void serialize(Archive& archive) {
    archive(code, flags, value);
  }
};

std::wstring key(int i) { return L"property " + std::to_wstring(i * 7919 % 1000); }

ZoVariant tree(int depth) {
  ZoHashDict<ZoVariant, ZoString> dict;
  for (int i = 0; i < (depth == 0 ? 10 : 100); ++i) {
    ZoVariant value = depth < 2    ? tree(depth + 1)
                      : i % 3 == 0 ? ZoVariant(i)
                      : i % 3 == 1 ? ZoVariant(i / 7.0, ZoTypeCode::Length)
                                   : ZoVariant(kText);
    static_cast<void>(dict.insertAt(ZoString(key(i).c_str()), std::move(value)));
  }
  return ZoVariant(std::move(dict));
}
PeerValue peerTree(int depth) {
  PeerValue::Map map;
  for (int i = 0; i < (depth == 0 ? 10 : 100); ++i) {
    PeerValue& value = map[key(i)];
    if (depth < 2) {
      value = peerTree(depth + 1);
    } else if (i % 3 == 0) {
      value.value = i;
    } else if (i % 3 == 1) {
      value.value = i / 7.0;
    } else {
      value.value = std::wstring(kText);
    }
  }
  return {0x2800, 8, std::move(map)};
}

void writeTree(benchmark::State& state) {
  const ZoVariant value = tree(0);
  for (auto _ : state) {
    ZoMemoryWriteArchive archive;
    archive << value;
    benchmark::DoNotOptimize(archive.bytes().data());
  }
}
std::string cerealTree(PeerValue& value) {
  std::ostringstream out;
  cereal::BinaryOutputArchive to(out);
  to(value);
  return std::move(out).str();
}
void cerealWriteTree(benchmark::State& state) {
  PeerValue value = peerTree(0);
  for (auto _ : state) benchmark::DoNotOptimize(cerealTree(value));
}

void readTree(benchmark::State& state) {
  ZoMemoryWriteArchive stored;
  stored << tree(0);
  for (auto _ : state) {
    ZoMemoryReadArchive archive(stored.bytes());
    ZoVariant value;
    archive >> value;
    benchmark::DoNotOptimize(value);
  }
}
void cerealReadTree(benchmark::State& state) {
  PeerValue original = peerTree(0);
  std::istringstream in(cerealTree(original));
  for (auto _ : state) {
    in.clear();
    in.seekg(0);
    cereal::BinaryInputArchive from(in);
    PeerValue value;
    from(value);
    benchmark::DoNotOptimize(value);
  }
}

// ---- The dump ----

template <int entries>
void dump(benchmark::State& state) {
  const ZoString text(kText);
  for (auto _ : state) {
    ZoDumpArchive archive;
    archive.pushScope(L"Part");
    for (int i = 0; i < entries; i += 4) {
      archive.write(i, L"Number");
      archive.write(i / 7.0, L"Length");
      archive.write(text, L"Norm");
      archive.write(static_cast<unsigned int>(i), L"");
    }
    benchmark::DoNotOptimize(archive.dump().data());
  }
}
template <int entries>
void streamedDump(benchmark::State& state) {
  const std::wstring text(kText), indent(L"\n   ");
  for (auto _ : state) {
    std::wostringstream out;
    out << L"\nPart";
    for (int i = 0; i < entries; i += 4) {
      out << indent << L"Number: " << i;
      out << indent << L"Length: " << i / 7.0;
      out << indent << L"Norm: \"" << text << L'"';
      out << indent << L"UInt32: " << static_cast<unsigned int>(i);
    }
    benchmark::DoNotOptimize(std::move(out).str());
  }
}

const bool registered = [] {
  name("Mixed100000/write/ours", writeMixed);
  name("Mixed100000/write/peer:cereal", cerealWriteMixed);
  name("Mixed100000/read/ours", readMixed);
  name("Mixed100000/read/peer:cereal", cerealReadMixed);
  name("Tree100000/write/ours", writeTree);
  name("Tree100000/write/peer:cereal", cerealWriteTree);
  name("Tree100000/read/ours", readTree);
  name("Tree100000/read/peer:cereal", cerealReadTree);
  name("Dump/100000/ours", dump<100000>);
  name("Dump/100000/peer:wostringstream", streamedDump<100000>);
  name("Dump/1000000/ours", dump<1000000>);
  name("Dump/1000000/peer:wostringstream", streamedDump<1000000>);
  return true;
}();

}  // namespace
