#include "messages/catalogues.h"

#include <algorithm>
#include <utility>

#include "text/collation.h"
#include "text/hash.h"

namespace zo {
namespace {

unsigned int hashOf(std::wstring_view name) noexcept {
  return hashFolded(name.data(), name.size()).hash();
}

}  // namespace

Catalogues::Catalogues(std::vector<Catalogue> catalogues) {
  rows_.reserve(catalogues.size());
  for (Catalogue& catalogue : catalogues) {
    const unsigned int hash = hashOf(catalogue.name);
    rows_.push_back({hash, std::move(catalogue)});
  }
  std::ranges::sort(rows_, {}, &Row::hash);
}

bool Catalogues::find(std::wstring_view file, unsigned int number, FoundMessage& found) const {
  const auto rows = std::ranges::equal_range(rows_, hashOf(file), {}, &Row::hash);
  for (const auto& [hash, catalogue] : rows) {
    if (!equalIgnoreCase(catalogue.name, file)) continue;
    for (const auto& data : catalogue.chain) {
      const MessageEntry* const entry = data->find(number);
      if (!entry) continue;
      found = {data->textOf(*entry), catalogue.name, data->rule};
      return true;
    }
  }
  return false;
}

}  // namespace zo
