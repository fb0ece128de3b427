#include "graph.h"

#include <map>

#include "names.h"
#include "say.h"
#include "text.h"

namespace zolib {

ZoDottyGraph graphOf(const std::string& library, const std::vector<ZoLibEntry>& entries) {
  ZoDottyGraph graph;
  const auto escaped = [](std::wstring_view text) {
    return std::wstring(ZoDottyGraph::escapedLabel(text).view());
  };
  std::map<std::wstring, int> clusters;  // by folder
  std::uint64_t size = 0, packed = 0;
  for (const ZoLibEntry& entry : entries) {
    const std::wstring_view name = entry.name.view();
    const std::wstring_view folder = folderOf(name);
    const std::wstring_view leaf = name.substr(folder.empty() ? 0 : folder.size() + 1);
    const std::string sizes =
        say({460, "%1, packed %2"}, readableSize(entry.size), readableSize(entry.storedSize)) +
        (entry.isDeleted() ? say({461, ", deleted"}) : std::string());
    std::wstring attributes =
        L"shape=box,label=\"" + escaped(leaf) + L"\\n" + toWide(sizes) + L"\"";
    if (entry.isDeleted()) attributes += L",style=dashed,color=grey,fontcolor=grey";
    graph.addNode(&entry, attributes.c_str());
    size += entry.size;
    packed += entry.storedSize;
    if (folder.empty()) continue;
    const auto [found, isNew] = clusters.try_emplace(folded(folder), 0);
    if (isNew) found->second = graph.addCluster(escaped(folder).c_str());
    graph.putNodeToCluster(&entry, found->second);
  }
  const std::string note = say({462, "%1 members, %2, packed %3"}, entries.size(),
                               readableSize(size), readableSize(packed));
  graph.addNote(escaped(toWide(library)).c_str());
  graph.addNote(toWide(note).c_str());
  return graph;
}

}  // namespace zolib
