// Keys for nodes that go by name: one key per name, ignoring case.
//
// A key stays valid as long as the map that gave it, or a copy of that map, lives. Copies share the
// names that they have in common, so a copy of the map goes with a copy of the graph.
//
// Errors:  nothing throws but std::bad_alloc, and then map and graph are as they were.
// Threads: one thread at a time per object and its copies.
// Cost:    finding is linear in the number of names.
#pragma once

#include <zo/config.h>
#include <zo/graph/dotty_graph.h>
#include <zo/text/string.h>

#include <memory>
#include <vector>

class ZO_COM_API ZoDottyMap {
 public:
  // The key of the first name that equals this one in the platform's collation of the user's
  // locale, ignoring case, or null.
  [[nodiscard]] const void* find(const wchar_t* name) const;

  // The key of the name. A name that is not known yet also becomes a node of the graph, with the
  // name as its label; for a known one the graph is left alone, whichever graph its node is in.
  const void* add(ZoDottyGraph& graph, const wchar_t* name, const wchar_t* color);

 private:
  std::vector<std::shared_ptr<const ZoString>> names_;  // the address of a name is its key
};
