// What a ZoDottyGraph consists of: nodes, links between them, clusters of them. Plain values.
//
// Numbers of nodes and clusters are their places in the graph, from 0. Null texts count as empty.
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: one thread at a time per object (texts share their storage like every ZoString).
#pragma once

#include <zo/config.h>
#include <zo/text/string.h>

#include <cstdint>
#include <vector>

class ZO_COM_API ZoDottyNode {
 public:
  static constexpr int noCluster = -1;

  ZoDottyNode() = default;
  explicit ZoDottyNode(const void* key, const wchar_t* attributes = nullptr)
      : key_(key), attributes_(attributes) {}

  // The caller's name for the node: an address that is compared and never read.
  [[nodiscard]] const void* key() const noexcept { return key_; }
  [[nodiscard]] const ZoString& attributes() const noexcept { return attributes_; }
  // The number of its cluster, or noCluster.
  [[nodiscard]] int cluster() const noexcept { return cluster_; }
  void setCluster(int cluster) noexcept { cluster_ = cluster; }

 private:
  const void* key_ = nullptr;
  ZoString attributes_;
  int cluster_ = noCluster;
};

class ZO_COM_API ZoDottyLink {
 public:
  ZoDottyLink() = default;
  ZoDottyLink(int source, int target, const wchar_t* label = nullptr,
              const wchar_t* attributes = nullptr)
      : source_(source), target_(target), label_(label), attributes_(attributes) {}

  [[nodiscard]] int source() const noexcept { return source_; }
  [[nodiscard]] int target() const noexcept { return target_; }
  [[nodiscard]] const ZoString& label() const noexcept { return label_; }
  [[nodiscard]] const ZoString& attributes() const noexcept { return attributes_; }

  // Orders the links of a graph: the source in the upper 32 bits, the target in the lower.
  [[nodiscard]] std::uint64_t key() const noexcept { return keyOf(source_, target_); }
  [[nodiscard]] static constexpr std::uint64_t keyOf(int source, int target) noexcept {
    return std::uint64_t{static_cast<std::uint32_t>(source)} << 32 |
           static_cast<std::uint32_t>(target);
  }

  // Texts do not count: two links are equal when they join the same nodes in the same direction.
  friend bool operator==(const ZoDottyLink& a, const ZoDottyLink& b) noexcept {
    return a.source_ == b.source_ && a.target_ == b.target_;
  }

 private:
  int source_ = 0;
  int target_ = 0;
  ZoString label_;
  ZoString attributes_;
};

class ZO_COM_API ZoDottyCluster {
 public:
  ZoDottyCluster() = default;
  explicit ZoDottyCluster(const wchar_t* label) : label_(label) {}

  [[nodiscard]] const ZoString& label() const noexcept { return label_; }
  // The numbers of its nodes, in the order in which they came.
  [[nodiscard]] const std::vector<int>& nodes() const noexcept { return nodes_; }

  void addNode(int index) { nodes_.push_back(index); }
  // Removes the first occurrence; whether there was one. Linear in the cluster's size.
  bool removeNode(int index) noexcept;

 private:
  ZoString label_;
  std::vector<int> nodes_;
};
