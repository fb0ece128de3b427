// graph: a value as a picture, for Graphviz.
#include <windows.h>
#include <zo/graph.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <sstream>
#include <string>

#include "paths.h"
#include "text.h"
#include "value_file.h"
#include "verbs.h"

namespace zoval {
namespace {

using zolib::toUtf8;

constexpr unsigned int kMostNodes = 5000;  // more than anyone can look at
constexpr std::size_t kMostCharacters = 60;

std::wstring labelOf(const ZoVariant& value, const ZoString* key) {
  std::wstring label = key ? std::wstring(key->view()) + L"\n" : std::wstring();
  label += value.printType().view();
  if (value.asDict() || value.asSequence() || value.isEmpty()) return label;
  std::wstring text(value.asString().view());
  if (text.size() > kMostCharacters) text.replace(kMostCharacters - 3, text.npos, L"...");
  return label + L"\n" + text;
}

class Picture {
 public:
  explicit Picture(const ZoVariant& root) { add(root, nullptr); }

  [[nodiscard]] const ZoDottyGraph& graph() const noexcept { return graph_; }
  [[nodiscard]] bool isWhole() const noexcept { return nodes_ <= kMostNodes; }

 private:
  // As deep as values that can be read: 256 levels.
  void add(const ZoVariant& value, const ZoString* key) {
    if (++nodes_ > kMostNodes) return;
    const bool isContainer = value.asDict() || value.asSequence();
    const ZoString label = ZoDottyGraph::escapedLabel(labelOf(value, key));
    const std::wstring attributes = std::wstring(isContainer ? L"shape=box" : L"shape=oval") +
                                    L",label=\"" + std::wstring(label.view()) + L"\"";
    graph_.addNode(&value, attributes.c_str());
    for (const auto [name, position, element] : value.elements()) {
      add(element, name);
      graph_.addLink(&value, &element, name ? nullptr : std::to_wstring(position).c_str());
    }
  }

  ZoDottyGraph graph_;
  unsigned int nodes_ = 0;
};

}  // namespace

void graph(const Options& options, Report& report) {
  ValueFile file;
  if (!readValue(options.file, options, file, report)) return;
  const ZoVariant* const root = file.value.find(options.path);
  if (!root) return report.fail(zolib::kNotFound, {170, "%1 has no %2"}, file.shown, options.path);
  const Picture picture(*root);
  if (!picture.isWhole())
    report.warn({180, "only the first %1 values are in the picture; say --path for a part"},
                kMostNodes);
  const std::wstring target = options.output.value_or(L"-");
  if (target == L"-") {
    std::wostringstream text;
    text << picture.graph();
    if (options.json)
      report.json()["dot"] = toUtf8(text.str());
    else
      report.console().out(toUtf8(text.str()));
  } else if (const int code = picture.graph().writeGraph(zolib::shellPath(target).c_str())) {
    SetLastError(static_cast<DWORD>(code));
    ZoSystem::fileSystem().errorIO(L"zoval");
    report.fail(zolib::kFailed, {165, "cannot write %1%2"}, target, zolib::because());
  }
}

}  // namespace zoval
