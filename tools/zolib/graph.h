// A library as a picture: its folders as clusters, its members with their sizes, deleted ones grey.
#pragma once

#include <zo/graph.h>
#include <zo/library/library_entry.h>

#include <string>
#include <vector>

namespace zolib {

ZoDottyGraph graphOf(const std::string& library, const std::vector<ZoLibEntry>& entries);

}  // namespace zolib
