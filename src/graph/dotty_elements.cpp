#include <zo/graph/dotty_elements.h>

#include <algorithm>

bool ZoDottyCluster::removeNode(int index) noexcept {
  const auto found = std::find(nodes_.begin(), nodes_.end(), index);
  if (found == nodes_.end()) return false;
  nodes_.erase(found);
  return true;
}
