// Draws two things as graphs: the registry with its services, of which two are this program's own,
// and a tree of variants. The texts go to the folder that the first argument names, or to this one:
//   graph FOLDER
//   dot -Tsvg FOLDER/services.dot -o services.svg
#include <zo/files.h>
#include <zo/graph.h>
#include <zo/system.h>
#include <zo/variant.h>

#include <iostream>
#include <sstream>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

// What a client may put in the place of standard services.
class PartErrors : public ZoErrLog {
 public:
  using ZoErrLog::ZoErrLog;
};
class PartFiles : public ZoForwardFileSystem {
 public:
  using ZoForwardFileSystem::ZoForwardFileSystem;
};

namespace {

struct Service {
  const wchar_t* slot;
  const ZoSysObj* object;
};

// The services in force.
std::vector<Service> services() {
  return {{L"cad", &ZoSystem::cad()},
          {L"cfg", &ZoSystem::cfg()},
          {L"codepage", &ZoSystem::codepage()},
          {L"error", &ZoSystem::error()},
          {L"execute", &ZoSystem::execute()},
          {L"fileSystem", &ZoSystem::fileSystem()},
          {L"fileSearch", &ZoSystem::fileSearch()},
          {L"fileOpen", &ZoSystem::fileOpen()},
          {L"layer", &ZoSystem::layer()},
          {L"macroLib", &ZoSystem::macroLib()},
          {L"message", &ZoSystem::message()},
          {L"units", &ZoSystem::units()},
          {L"standardMgr", &ZoSystem::standardMgr()},
          {L"sysDisp", &ZoSystem::sysDisp()},
          {L"sysInfo", &ZoSystem::sysInfo()}};
}

// The class of an object, without what compilers put in front of it: a length, or "class ".
std::wstring className(const ZoSysObj& object) {
  std::string name = typeid(object).name();
  name.erase(0, name.find_first_not_of("0123456789"));
  if (name.starts_with("class ")) name.erase(0, 6);
  return {name.begin(), name.end()};
}

// Slots in one cluster, each with a link to what serves it and one to what that replaces.
ZoDottyGraph registryGraph(const std::vector<Service>& standard) {
  ZoDottyGraph graph;
  ZoDottyMap slots;
  graph.addNote(L"The registry and its services");
  const int registry = graph.addCluster(L"ZoSystem");
  const std::vector<Service> current = services();
  for (std::size_t i = 0; i < current.size(); ++i) {
    const auto& [slot, object] = current[i];
    const ZoSysObj* const replaced = standard[i].object;
    const void* const key = slots.add(graph, slot, L"lightgrey");
    graph.putNodeToCluster(key, registry);
    graph.addNode(replaced, className(*replaced).c_str(), L"lightgrey");
    graph.addNode(object, className(*object).c_str(), L"lightblue");  // unless it is the standard
    graph.addLink(key, object);
    if (object != replaced) graph.addLink(key, replaced, L"replaced", L"style=dotted");
  }
  return graph;
}

std::wstring labelOf(const ZoVariant& value) {
  const ZoString type = ZoType::codeToString(value.code());
  std::wstring label(type.view());
  if (!value.asDict() && !value.asSequence()) label += L"\n" + std::wstring(value.asString());
  return label;
}

// A node for each value, under the address of that value; links carry keys and positions.
void addTree(ZoDottyGraph& graph, const ZoVariant& value) {
  const bool isLeaf = !value.asDict() && !value.asSequence();
  graph.addNode(&value, ZoDottyGraph::escapedLabel(labelOf(value)),
                isLeaf ? L"lightyellow" : L"lightgrey");
  for (const auto [key, position, element] : value.elements()) {
    addTree(graph, element);
    const std::wstring label = key ? std::wstring(*key) : std::to_wstring(position);
    graph.addLink(&value, &element, ZoDottyGraph::escapedLabel(label));
  }
}

ZoDottyGraph treeGraph() {
  using Dict = ZoHashDict<ZoVariant, ZoString>;
  ZoArray<ZoVariant> sizes;
  for (const double length : {40.0, 60.0})
    sizes.emplace(Dict{{L"thread", L"M8"}, {L"length", ZoVariant(length, ZoTypeCode::Length)}});
  const ZoVariant part(
      Dict{{L"name", L"screw"}, {L"standard", L"ISO 4014"}, {L"sizes", std::move(sizes)}});
  ZoDottyGraph graph;
  graph.addNote(L"A part as a variant");
  addTree(graph, part);
  return graph;
}

int writeGraphs(const std::wstring& folder) {
  std::wostringstream report;
  const std::vector<Service> standard = services();
  auto* const errors = new PartErrors(&report);
  auto* const files = new PartFiles(ZoSystem::fileSystem());
  ZoSystem::setError(errors);
  ZoSystem::setFileSystem(files);
  const ZoDottyGraph registry = registryGraph(standard);
  // Taken out again, they are ours.
  ZoSystem::setError(nullptr);
  ZoSystem::setFileSystem(nullptr);
  delete errors;
  delete files;

  const ZoDottyGraph tree = treeGraph();
  if (registry.nodes().size() != 15 + 15 + 2 || tree.nodes().size() != 10) return 1;
  if (registry.writeGraph((folder + L"/services.dot").c_str()) != 0) return 1;
  return tree.writeGraph((folder + L"/tree.dot").c_str());
}

}  // namespace

int main(int count, char** arguments) {
  if (zoComDllAttach() != 0) return 1;
  const ZoString folder = ZoString().setFromMB(count > 1 ? arguments[1] : ".");
  const int result = writeGraphs(std::wstring(folder));
  std::cout << (result == 0 ? "services.dot and tree.dot are written\n" : "not written\n");
  return zoComDllDetach() == 0 ? result : 1;
}
