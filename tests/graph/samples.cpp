#include "graph/samples.h"

namespace {

// Keys are addresses that nothing lies at.
const void* key(size_t n) { return reinterpret_cast<const void*>(n); }

ZoDottyGraph withNodes(size_t count) {
  ZoDottyGraph graph;
  for (size_t i = 0; i < count; ++i) graph.addNode(key(i), L"shape=oval");
  return graph;
}

Sample nodesAndNotes() {
  ZoDottyGraph graph;
  graph.addNode(key(7), L"first", L"red");
  graph.addNode(key(3), L"label=\"second\",shape=oval");
  graph.addNode(nullptr, nullptr);
  graph.addNote(L"a note");
  graph.addNote(nullptr);
  graph.addNote(L"and another");
  return {L"nodes", graph,
          dotText("    label=\"\\na note\\n\\nand another\\n\"\n",
                  "  node_0 [label=\"first\",color=red];\n"
                  "  node_1 [label=\"second\",shape=oval];\n"
                  "  node_2 [];\n"
                  "\n}\n")};
}

Sample clustersInEveryAlphabet() {
  ZoDottyGraph graph = withNodes(2);
  graph.addNode(key(2), L"Gr\xF6\xDF\x65 \x65E5\x672C \xD83D\xDE00", L"blue");
  graph.addCluster(L"\x416");
  graph.addCluster(nullptr);
  graph.putNodeToCluster(key(2), 0);
  graph.putNodeToCluster(key(0), 0);
  graph.addLink(key(1), key(2), L"\x3A9");
  graph.addNote(L"\x5E9\x5DC");
  return {L"clusters", graph,
          dotText("    label=\"\\n\xD7\xA9\xD7\x9C\\n\"\n",
                  "  node_0 [shape=oval];\n"
                  "  node_1 [shape=oval];\n"
                  "  node_2 [label=\"Gr\xC3\xB6\xC3\x9F\x65 \xE6\x97\xA5\xE6\x9C\xAC "
                  "\xF0\x9F\x98\x80\",color=blue];\n"
                  "\n"
                  "  subgraph cluster_0 {\n"
                  "    label=\"\xD0\x96\";\n"
                  " node_2; node_0;\n"
                  "  }\n\n"
                  "  subgraph cluster_1 {\n"
                  "    label=\"\";\n"
                  "\n"
                  "  }\n\n"
                  "  node_1 -> node_2 [label=\"\xCE\xA9\"];\n"
                  "}\n")};
}

// Cycles, a link to itself, every form, added in another order than written. Ten nodes and more:
// numbers are ordered as numbers.
Sample links() {
  ZoDottyGraph graph = withNodes(11);
  graph.addLink(key(10), key(0));
  graph.addLink(key(0), key(10), nullptr, L"color=red");
  graph.addLink(key(0), key(2), L"there", L"style=dotted");
  graph.addLink(key(1), key(1), L"", L"");
  std::string body;
  for (int i = 0; i < 11; ++i) body += "  node_" + std::to_string(i) + " [shape=oval];\n";
  body +=
      "\n"
      "  node_0 -> node_2 [style=dotted,label=\"there\"];\n"
      "  node_0 -> node_10 [color=red];\n"
      "  node_1 -> node_1\n"
      "  node_10 -> node_0\n"
      "}\n";
  return {L"links", graph, dotText("", body)};
}

// Texts that would end their quotes, be taken for escapes or break the picture's XML.
Sample hostileTexts() {
  using namespace std::string_view_literals;
  ZoDottyGraph graph;
  const auto addNode = [&graph](std::wstring_view label) {
    graph.addNode(key(graph.nodes().size()), ZoDottyGraph::escapedLabel(label), L"red");
  };
  addNode(L"\"];evil[label=\"x");
  addNode(L"C:\\new\\G\\");
  addNode(L"<b>&lt;&amp</b>");
  addNode(L"one\ntwo\r\nthree\rfour\n");
  addNode(L"tab\t zero\0 bell\a delete\x7F none\xFFFF lone\xD800"sv);
  graph.addNote(ZoDottyGraph::escapedLabel(L"\\\""));
  return {L"hostile", graph,
          dotText("    label=\"\\n\\\\\\\"\\n\"\n",
                  "  node_0 [label=\"\\\"];evil[label=\\\"x\",color=red];\n"
                  "  node_1 [label=\"C:\\\\new\\\\G\\\\\",color=red];\n"
                  "  node_2 [label=\"<b>&amp;lt;&amp;amp</b>\",color=red];\n"
                  "  node_3 [label=\"one\\ntwo\\nthree\\nfour\\n\",color=red];\n"
                  "  node_4 [label=\"tab  zero  bell  delete  none\xEF\xBF\xBD "
                  "lone\xEF\xBF\xBD\",color=red];\n"
                  "\n}\n")};
}

}  // namespace

std::vector<Sample> samples() {
  return {{L"empty", {}, dotText("", "\n}\n")},
          nodesAndNotes(),
          clustersInEveryAlphabet(),
          links(),
          hostileTexts()};
}

std::string dotText(const std::string& captionLine, const std::string& body) {
  return "digraph G {\n"
         "  graph[\n"
         "    fontname=\"arial\",\n"
         "    fontsize=14,\n"
         "    ranksep=2.0,\n"
         "    page=\"8.5,11\",\n"
         "    center=true,\n"
         "    size=\"7.5,10\",\n"
         "    orientation=portrait\n" +
         captionLine +
         "  ];\n"
         "\n"
         "  node[\n"
         "    style=filled,\n"
         "    shape=box,\n"
         "    fontname=\"arial\",\n"
         "    fontsize=13,\n"
         "  ];\n"
         "\n" +
         body;
}
