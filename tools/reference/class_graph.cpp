// class_graph CLASSES.csv FOLDER: the pictures of the reference. Draws the classes of each family
// with what they derive from and, dotted, what else of the family they speak of, into
// FOLDER/family_NAME.dot. pages.py says what the table holds.
#include <zo/attach/life_cycle.h>
#include <zo/files/text_file.h>
#include <zo/graph.h>
#include <zo/parse/csv_reader.h>
#include <zo/text/split_views.h>

#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

struct Class {
  ZoString name, page, bases, uses;
};

using Families = std::map<std::wstring, std::vector<Class>>;

int readClasses(const ZoFileName& file, Families& families) {
  ZoString text;
  if (const int code = zoReadText(file, text)) return code;
  ZoCsvReader table(text);
  if (const int code = table.readHeader()) return code;
  while (table.next()) {
    if (table.fault() != ZoCsvReader::kNone) return 1;
    families[std::wstring(table.field(L"family"))].push_back(
        {ZoString(table.field(L"class")), ZoString(table.field(L"page")),
         ZoString(table.field(L"bases")), ZoString(table.field(L"uses"))});
  }
  return 0;
}

// A box that leads to the page of its class.
std::wstring attributesOf(const Class& drawn) {
  const std::wstring name(ZoDottyGraph::escapedLabel(drawn.name));
  return L"label=\"" + name + L"\",fillcolor=\"#e8f0fa\",target=\"_top\",URL=\"" +
         std::wstring(drawn.page.view()) + L"\"";
}

ZoDottyGraph graphOf(const std::vector<Class>& classes) {
  ZoDottyGraph graph;
  ZoDottyMap names;
  for (const Class& drawn : classes) {
    // The map makes the node of a name that it does not know; ours come first, with their pages.
    ZoDottyGraph unused;
    graph.addNode(names.add(unused, drawn.name, L"white"), attributesOf(drawn).c_str());
  }
  for (const Class& drawn : classes) {
    const void* const from = names.find(drawn.name);
    for (const std::wstring_view base : zoSplitViews(drawn.bases, L" "))
      graph.addLink(from, names.add(graph, ZoString(base), L"white"));
    for (const std::wstring_view used : zoSplitViews(drawn.uses, L" "))
      graph.addLink(from, names.find(ZoString(used)), nullptr, L"style=dotted,color=gray");
  }
  return graph;
}

int run(const ZoString& table, const ZoString& folder) {
  Families families;
  if (const int code = readClasses(ZoFileName(table), families)) return code;
  for (const auto& [family, classes] : families) {
    const std::wstring file = std::wstring(folder) + L"/family_" + family + L".dot";
    if (graphOf(classes).writeGraph(file.c_str()) != 0) return 1;
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3 || zoComDllAttach() != 0) return 2;
  const int result = run(ZoString().setFromMB(arguments[1]), ZoString().setFromMB(arguments[2]));
  if (result != 0)
    std::cerr << "class_graph: the table or a picture could not be read or written\n";
  return zoComDllDetach() == 0 ? result : 2;
}
