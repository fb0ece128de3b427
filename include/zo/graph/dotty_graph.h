// A directed graph, collected in memory and written as a text in the dot language of Graphviz, so
// that a developer can look at how objects hang together: docs/graphs.md.
//
// Nodes go by keys: addresses that the caller chooses, commonly those of the objects themselves.
// They are compared and never read. ZoDottyMap gives keys to names.
//
// Texts are written as they are: attributes, labels and notes must be valid where they stand in the
// dot language, between double quotes for labels and notes. escapedLabel() makes any text so. Null
// texts count as empty.
//
// Errors:  operations on keys answer whether the key is known. createGraph and showGraph answer
//          true even when nothing could be written; writeGraph says what went wrong. Nothing throws
//          but std::bad_alloc, and then the graph is as it was.
// Threads: one thread at a time per object (texts share their storage like every ZoString).
// Limits:  2^31 - 1 nodes and as many clusters.
// Cost:    adding and finding are logarithmic; taking a node out of a cluster is linear in the
//          cluster's size. Writing is linear and needs memory for one block of 64 KiB, and a file
//          grows by such blocks: a reader sees the end of the text only when writing is done.
// Stored:  UTF-8 without a byte order mark, lines end with a line feed; a surrogate that stands
//          alone becomes U+FFFD.
#pragma once

#include <zo/config.h>
#include <zo/graph/dotty_elements.h>
#include <zo/text/string.h>

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string_view>
#include <vector>

class ZO_COM_API ZoDottyGraph {
 public:
  // Adds a node with attributes such as L"label=\"A\",shape=oval". A key that is known already
  // keeps its node as it is.
  void addNode(const void* key, const wchar_t* attributes);
  // Attributes from a label, valid between double quotes, and a colour by Graphviz's names, which
  // must not be empty: dot refuses "color=" with nothing behind it.
  void addNode(const void* key, const wchar_t* label, const wchar_t* color);

  // Links two known nodes, which may be the same; false when one is not known. The first link from
  // one node to another stays as it is.
  bool addLink(const void* from, const void* to, const wchar_t* label = nullptr,
               const wchar_t* attributes = nullptr);

  // Adds a cluster without nodes and returns its number.
  int addCluster(const wchar_t* label);
  // Makes the node the cluster's last one, and takes it out of the cluster where it was. False when
  // there is no such node or cluster.
  bool putNodeToCluster(const void* key, int cluster);

  // Adds a line to the graph's caption.
  void addNote(const wchar_t* text);

  [[nodiscard]] bool contains(const void* key) const { return index_.contains(key); }

  // ---- What was collected ----
  [[nodiscard]] const std::vector<ZoDottyNode>& nodes() const noexcept { return nodes_; }
  // By ZoDottyLink::key(): ordered by source, then by target.
  [[nodiscard]] const std::map<std::uint64_t, ZoDottyLink>& links() const noexcept {
    return links_;
  }
  [[nodiscard]] const std::vector<ZoDottyCluster>& clusters() const noexcept { return clusters_; }
  [[nodiscard]] const std::vector<ZoString>& notes() const noexcept { return notes_; }

  // ---- Writing ----
  // Writes the file, over one that is there. True, whatever happened.
  bool createGraph(const wchar_t* fileName) const;
  // createGraph into "c:\dbgraph.dt".
  bool showGraph() const;  // NOLINT(modernize-use-nodiscard): always true
  // As createGraph. Returns 0, or the platform's code of the first failure: the file then was not
  // opened, or ends early.
  [[nodiscard]] int writeGraph(const wchar_t* fileName) const;
  // The same text, collected in memory first.
  friend ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoDottyGraph& graph);

  // The text as it must stand between the double quotes of a label to be shown as it is: quotes,
  // backslashes and ampersands are escaped, line ends (LF, CR LF, CR) become "\n", and what no
  // picture can show becomes a blank (control characters) or U+FFFD (U+FFFE, U+FFFF).
  [[nodiscard]] static ZoString escapedLabel(std::wstring_view text);

 private:
  [[nodiscard]] int indexOf(const void* key) const;  // -1 when it is not known

  std::vector<ZoDottyNode> nodes_;
  std::map<std::uint64_t, ZoDottyLink> links_;
  std::vector<ZoDottyCluster> clusters_;
  std::vector<ZoString> notes_;
  std::map<const void*, int> index_;  // key -> place in nodes_
};
