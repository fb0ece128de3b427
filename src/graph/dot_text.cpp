// The graph as text in the dot language.
#include <zo/graph/dotty_graph.h>
#include <zo/text/number_text.h>

#include <cstdint>
#include <ostream>

#include "platform/output_file.h"
#include "platform/utf8_writer.h"
#include "text/text_buffer.h"

namespace {

constexpr std::wstring_view kGraphAttributes =
    L"digraph G {\n"
    L"  graph[\n"
    L"    fontname=\"arial\",\n"
    L"    fontsize=14,\n"
    L"    ranksep=2.0,\n"
    L"    page=\"8.5,11\",\n"
    L"    center=true,\n"
    L"    size=\"7.5,10\",\n"
    L"    orientation=portrait\n";

constexpr std::wstring_view kNodeAttributes =
    L"  node[\n"
    L"    style=filled,\n"
    L"    shape=box,\n"
    L"    fontname=\"arial\",\n"
    L"    fontsize=13,\n"
    L"  ];\n\n";

// The digits of a node's or a cluster's number, whatever a stream's locale would make of it.
class IndexText {
 public:
  template <class Index>
  explicit IndexText(Index index) noexcept
      : length_(ZoIntToStr(static_cast<std::int64_t>(index), text_)) {}

  // Valid as long as this object.
  [[nodiscard]] std::wstring_view view() const noexcept { return {text_, length_}; }

 private:
  wchar_t text_[ZoNumberTextSize];
  size_t length_;
};

template <class Out>
void writeNotes(Out& out, const std::vector<ZoString>& notes) {
  if (notes.empty()) return;
  out << L"    label=\"\\n";  // the caption stands one line below the picture
  for (const ZoString& note : notes) out << note.view() << L"\\n";
  out << L"\"\n";
}

template <class Out>
void writeNode(Out& out, size_t index, const ZoDottyNode& node) {
  out << L"  node_" << IndexText(index).view() << L" [" << node.attributes().view() << L"];\n";
}

template <class Out>
void writeCluster(Out& out, size_t index, const ZoDottyCluster& cluster) {
  out << L"  subgraph cluster_" << IndexText(index).view() << L" {\n";
  out << L"    label=\"" << cluster.label().view() << L"\";\n";
  for (const int node : cluster.nodes()) out << L" node_" << IndexText(node).view() << L";";
  out << L"\n  }\n\n";
}

template <class Out>
void writeLink(Out& out, const ZoDottyLink& link) {
  const std::wstring_view attributes = link.attributes().view();
  const std::wstring_view label = link.label().view();
  out << L"  node_" << IndexText(link.source()).view() << L" -> node_"
      << IndexText(link.target()).view();
  if (!attributes.empty() || !label.empty()) {
    out << L" [" << attributes;
    if (!attributes.empty() && !label.empty()) out << L",";
    if (!label.empty()) out << L"label=\"" << label << L"\"";
    out << L"];";
  }
  out << L"\n";
}

template <class Out>
void writeText(Out& out, const ZoDottyGraph& graph) {
  out << kGraphAttributes;
  writeNotes(out, graph.notes());
  out << L"  ];\n\n" << kNodeAttributes;
  size_t index = 0;
  for (const ZoDottyNode& node : graph.nodes()) writeNode(out, index++, node);
  out << L"\n";
  index = 0;
  for (const ZoDottyCluster& cluster : graph.clusters()) writeCluster(out, index++, cluster);
  for (const auto& [key, link] : graph.links()) writeLink(out, link);
  out << L"}\n";
}

}  // namespace

bool ZoDottyGraph::createGraph(const wchar_t* fileName) const {
  static_cast<void>(writeGraph(fileName));  // true even then: callers show a graph and go on
  return true;
}

bool ZoDottyGraph::showGraph() const { return createGraph(L"c:\\dbgraph.dt"); }

int ZoDottyGraph::writeGraph(const wchar_t* fileName) const {
  zo::OutputFile file(fileName);
  if (file.error() == 0) {
    zo::Utf8Writer out(file);
    writeText(out, *this);
    out.flush();
  }
  return file.close();
}

std::wostream& operator<<(std::wostream& out, const ZoDottyGraph& graph) {
  zo::TextBuffer text;
  writeText(text, graph);
  return out << text.view();
}

ZoString ZoDottyGraph::escapedLabel(std::wstring_view text) {
  zo::TextBuffer label;
  for (size_t i = 0; i < text.size(); ++i) {
    const wchar_t c = text[i];
    if (c == L'"' || c == L'\\') {
      label << L'\\' << c;
    } else if (c == L'&') {
      label << L"&amp;";
    } else if (c == L'\n' || c == L'\r') {
      if (c == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n') ++i;
      label << L"\\n";
    } else if (c < L' ' || c == 0x7F) {
      label << L' ';
    } else {
      label << (c >= 0xFFFE ? wchar_t{0xFFFD} : c);
    }
  }
  return label.toString();
}
