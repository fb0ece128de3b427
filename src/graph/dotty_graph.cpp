#include <zo/graph/dotty_graph.h>

#include <algorithm>
#include <string>
#include <utility>

bool ZoDottyCluster::removeNode(int index) noexcept {
  const auto found = std::find(nodes_.begin(), nodes_.end(), index);
  if (found == nodes_.end()) return false;
  nodes_.erase(found);
  return true;
}

int ZoDottyGraph::indexOf(const void* key) const {
  const auto found = index_.find(key);
  return found == index_.end() ? -1 : found->second;
}

void ZoDottyGraph::addNode(const void* key, const wchar_t* attributes) {
  const auto [place, isNew] = index_.try_emplace(key, static_cast<int>(nodes_.size()));
  if (!isNew) return;
  try {
    nodes_.emplace_back(key, attributes);
  } catch (...) {
    index_.erase(place);
    throw;
  }
}

void ZoDottyGraph::addNode(const void* key, const wchar_t* label, const wchar_t* color) {
  std::wstring attributes(L"label=\"");
  attributes.append(zo::textOf(label)).append(L"\",color=").append(zo::textOf(color));
  addNode(key, attributes.c_str());
}

bool ZoDottyGraph::addLink(const void* from, const void* to, const wchar_t* label,
                           const wchar_t* attributes) {
  const int source = indexOf(from);
  const int target = indexOf(to);
  if (source < 0 || target < 0) return false;
  links_.try_emplace(ZoDottyLink::keyOf(source, target), source, target, label, attributes);
  return true;
}

int ZoDottyGraph::addCluster(const wchar_t* label) {
  clusters_.emplace_back(label);
  return static_cast<int>(clusters_.size()) - 1;
}

bool ZoDottyGraph::putNodeToCluster(const void* key, int cluster) {
  const int index = indexOf(key);
  if (index < 0 || !std::in_range<size_t>(cluster) ||
      static_cast<size_t>(cluster) >= clusters_.size()) {
    return false;
  }
  ZoDottyNode& node = nodes_[static_cast<size_t>(index)];
  // Appending first leaves all as it was when memory runs out. Where both are one cluster, its
  // older mention of the node is the one that goes.
  clusters_[static_cast<size_t>(cluster)].addNode(index);
  if (node.cluster() != ZoDottyNode::noCluster) {
    clusters_[static_cast<size_t>(node.cluster())].removeNode(index);
  }
  node.setCluster(cluster);
  return true;
}

void ZoDottyGraph::addNote(const wchar_t* text) { notes_.emplace_back(text); }
