#include <gtest/gtest.h>
#include <windows.h>
#include <zo/graph.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <sstream>
#include <utility>
#include <vector>

#include "graph/samples.h"
#include "support/child_process.h"
#include "support/file_bytes.h"
#include "support/printers.h"
#include "support/temp_folder.h"

using zo::test::fileBytes;
using zo::test::TempFolder;

namespace {

const void* const kA = "a";
const void* const kB = "b";
const void* const kC = "c";
const void* const kUnknown = "unknown";

ZoDottyGraph threeNodes() {
  ZoDottyGraph graph;
  for (const void* key : {kA, kB, kC}) graph.addNode(key, L"x=y");
  return graph;
}

std::wstring textOf(const ZoDottyGraph& graph) {
  std::wostringstream out;
  out << graph;
  return std::move(out).str();
}

}  // namespace

// Writes the samples into the folder that the first argument names: the test with Graphviz.
ZO_TEST_CHILD(write_samples) {
  for (const Sample& sample : samples()) {
    const std::wstring path = parent.argument(0) + L'/' + sample.name + L".dot";
    if (sample.graph.writeGraph(path.c_str()) != 0) return 1;
  }
  return 0;
}

TEST(DottyGraph, TextIsExact) {
  const TempFolder folder;
  const std::filesystem::path file = folder.path() / L"\x65E5.dt";
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(testing::PrintToString(sample.name));
    EXPECT_TRUE(sample.graph.createGraph(file.c_str()));  // over the one before
    EXPECT_EQ(fileBytes(file), sample.text);
  }
}

TEST(DottyGraph, UnknownKeysAndWhatIsThereAlreadyChangeNothing) {
  ZoDottyGraph graph = threeNodes();
  graph.addCluster(L"0");
  ASSERT_TRUE(graph.addLink(kA, kB, L"label", L"style=bold"));
  const std::wstring before = textOf(graph);
  graph.addNode(kA, L"other=attributes");
  EXPECT_TRUE(graph.addLink(kA, kB, L"other", L"style=dotted"));
  EXPECT_FALSE(graph.addLink(kA, kUnknown));
  EXPECT_FALSE(graph.putNodeToCluster(kUnknown, 0));
  for (const int cluster : {-1, 1, INT_MAX}) {
    EXPECT_FALSE(graph.putNodeToCluster(kA, cluster)) << cluster;
  }
  EXPECT_EQ(textOf(graph), before);
}

TEST(DottyGraph, ANodeIsInOneClusterAtMostAsItsLastNode) {
  ZoDottyGraph graph = threeNodes();
  graph.addCluster(L"0");
  graph.addCluster(L"1");
  for (const void* key : {kA, kB, kC, kA}) EXPECT_TRUE(graph.putNodeToCluster(key, 0));
  EXPECT_EQ(graph.clusters()[0].nodes(), (std::vector{1, 2, 0}));
  EXPECT_TRUE(graph.putNodeToCluster(kC, 1));
  EXPECT_EQ(graph.clusters()[0].nodes(), (std::vector{1, 0}));
  EXPECT_EQ(graph.clusters()[1].nodes(), (std::vector{2}));
}

TEST(DottyGraph, WhatCannotBeWrittenIsReportedByWriteGraphOnly) {
  const TempFolder folder;
  const std::wstring base = folder.path().wstring();
  std::vector<std::pair<std::wstring, int>> cases = {
      {base, ERROR_ACCESS_DENIED}, {base + L"\\none\\g.dt", ERROR_PATH_NOT_FOUND}};
  // A full medium: Wine shows the host's files there.
  if (GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version"))
    cases.emplace_back(L"Z:\\dev\\full", ERROR_DISK_FULL);
  for (const auto& [name, code] : cases) {
    EXPECT_TRUE(threeNodes().createGraph(name.c_str()));
    EXPECT_EQ(threeNodes().writeGraph(name.c_str()), code);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(DottyMap, NamesAreFoundIgnoringCase) {
  ZoDottyGraph graph;
  ZoDottyMap map;
  const wchar_t* const names[][3] = {{L"SHAFT", L"shaft", L"shafts"},  // added, also, not
                                     {L"Gr\xF6\xDF\x65", L"gr\xD6\xDF\x45", L"grosse"},
                                     {L"", nullptr, L" "}};
  for (const auto& [added, also, other] : names) {
    const void* const key = map.add(graph, added, L"red");
    EXPECT_TRUE(graph.contains(key));
    EXPECT_EQ(map.find(also), key);
    EXPECT_EQ(map.find(other), nullptr);
    EXPECT_EQ(map.add(graph, also, L"blue"), key);
  }
  EXPECT_EQ(graph.nodes().size(), std::size(names));
}

TEST(DottyMap, CopiesKeepTheKeysAndGoOnAlone) {
  ZoDottyGraph graph;
  auto map = std::make_unique<ZoDottyMap>();
  const void* const key = map->add(graph, L"name", L"red");
  ZoDottyMap copy(*map);
  copy.add(graph, L"other", L"red");
  EXPECT_EQ(map->find(L"other"), nullptr);
  map.reset();
  EXPECT_EQ(copy.find(L"name"), key);  // reads what the first map made
}
