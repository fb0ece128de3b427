// Writing a graph beside the plain way of writing the same text: std::wofstream, piece by piece
// from arrays that lie ready.
#include <benchmark/benchmark.h>
#include <zo/graph.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr size_t kNodes = 100'000;
constexpr size_t kLinksPerNode = 3;

// What the peer keeps: everything is numbered and in order already.
struct Plain {
  struct Link {
    size_t source, target;
    std::wstring label;
  };
  std::vector<std::wstring> nodes;
  std::vector<Link> links;
};

// Every node is linked to three later ones (in a ring), every third link has a label.
Plain makePlain() {
  Plain plain;
  for (size_t i = 0; i < kNodes; ++i) plain.nodes.push_back(L"part " + std::to_wstring(i));
  for (size_t i = 0; i < kNodes; ++i) {
    std::vector<size_t> targets;
    for (const size_t step : {size_t{1}, size_t{7}, size_t{1000}}) {
      targets.push_back((i + step) % kNodes);
    }
    std::sort(targets.begin(), targets.end());
    for (size_t k = 0; k < kLinksPerNode; ++k) {
      plain.links.push_back({i, targets[k], k == 0 ? L"uses" : L""});
    }
  }
  return plain;
}

const void* keyOf(const Plain& plain, size_t node) { return &plain.nodes[node]; }

ZoDottyGraph makeGraph(const Plain& plain) {
  ZoDottyGraph graph;
  for (size_t i = 0; i < plain.nodes.size(); ++i) {
    graph.addNode(keyOf(plain, i), plain.nodes[i].c_str(), L"red");
  }
  for (const Plain::Link& link : plain.links) {
    graph.addLink(keyOf(plain, link.source), keyOf(plain, link.target), link.label.c_str());
  }
  return graph;
}

// By hand; `flush` after each link as a graph's author may do with std::endl.
void writePlain(const Plain& plain, const std::filesystem::path& path, bool flush) {
  std::wofstream out(path, std::ios::binary);
  out << L"digraph G {\n  graph[\n    fontname=\"arial\",\n    fontsize=14,\n    ranksep=2.0,\n"
         L"    page=\"8.5,11\",\n    center=true,\n    size=\"7.5,10\",\n    orientation=portrait\n"
         L"  ];\n\n  node[\n    style=filled,\n    shape=box,\n    fontname=\"arial\",\n"
         L"    fontsize=13,\n  ];\n\n";
  for (size_t i = 0; i < plain.nodes.size(); ++i) {
    out << L"  node_" << i << L" [label=\"" << plain.nodes[i] << L"\",color=red];\n";
  }
  out << L'\n';
  for (const Plain::Link& link : plain.links) {
    out << L"  node_" << link.source << L" -> node_" << link.target;
    if (!link.label.empty()) out << L" [label=\"" << link.label << L"\"];";
    out << L'\n';
    if (flush) out.flush();
  }
  out << L"}\n";
}

std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Runs `write`, which gets a path, and sees that it wrote what the other side writes.
template <class Write>
void run(benchmark::State& state, const Plain& plain, Write write) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  const std::filesystem::path path = folder / "zo_graph_bench.dt";
  const std::filesystem::path peers = folder / "zo_graph_bench_peer.dt";
  for (auto _ : state) write(path);
  writePlain(plain, peers, false);
  const std::string text = bytesOf(path);
  if (text.empty() || text != bytesOf(peers)) state.SkipWithError("the texts differ");
  state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
  std::filesystem::remove(path);
  std::filesystem::remove(peers);
}

void writeOurs(benchmark::State& state) {
  const Plain plain = makePlain();
  const ZoDottyGraph graph = makeGraph(plain);
  run(state, plain, [&](const auto& path) { graph.createGraph(path.wstring().c_str()); });
}

void collectAndWriteOurs(benchmark::State& state) {
  const Plain plain = makePlain();
  run(state, plain,
      [&](const auto& path) { makeGraph(plain).createGraph(path.wstring().c_str()); });
}

void writeWofstream(benchmark::State& state) {
  const Plain plain = makePlain();
  run(state, plain, [&](const auto& path) { writePlain(plain, path, false); });
}

void writeWofstreamFlushing(benchmark::State& state) {
  const Plain plain = makePlain();
  run(state, plain, [&](const auto& path) { writePlain(plain, path, true); });
}

}  // namespace

BENCHMARK(writeOurs)->Name("Write100kNodes300kLinks/ours")->UseRealTime();
BENCHMARK(writeWofstream)->Name("Write100kNodes300kLinks/peer:wofstream")->UseRealTime();
BENCHMARK(writeWofstreamFlushing)
    ->Name("Write100kNodes300kLinks/peer:wofstream_endl")
    ->UseRealTime();
// The peer collects nothing: it writes what lies ready.
BENCHMARK(collectAndWriteOurs)->Name("CollectAndWrite100kNodes300kLinks/ours")->UseRealTime();
BENCHMARK(writeWofstream)->Name("CollectAndWrite100kNodes300kLinks/peer:wofstream")->UseRealTime();
