#include "search/name_index.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "names/name_compare.h"

namespace zo {

std::wstring withBackslashes(std::wstring_view text) {
  std::wstring result(text);
  std::ranges::replace(result, L'/', L'\\');
  return result;
}

NameIndex::NameIndex(std::vector<Name> names, Key key) : key_(key), names_(std::move(names)) {
  buckets_.resize(std::bit_ceil(names_.size() + names_.size() / 2 + 1));
  links_.resize(names_.size());
  for (std::size_t i = names_.size(); i-- > 0;) {  // so that the first one comes first in its chain
    const std::wstring_view path = names_[i].path;
    const std::size_t hash = hashOf(key == kWhole ? path : lastComponent(path));
    std::uint32_t& bucket = buckets_[hash & (buckets_.size() - 1)];
    links_[i] = {hash, std::exchange(bucket, static_cast<std::uint32_t>(i + 1))};
  }
}

std::size_t NameIndex::hashOf(std::wstring_view key) noexcept { return hashName(key); }

bool NameIndex::hasKey(const Name& name, std::wstring_view key) const noexcept {
  return equalNames(key_ == kWhole ? std::wstring_view(name.path) : lastComponent(name.path), key);
}

bool comesFirst(std::wstring_view a, std::wstring_view b) noexcept {
  const auto levelsOfA = std::ranges::count(a, L'\\'), levelsOfB = std::ranges::count(b, L'\\');
  return levelsOfA != levelsOfB ? levelsOfA < levelsOfB : orderNames(a, b) < 0;
}

bool endsInLevels(std::wstring_view path, std::wstring_view name) noexcept {
  if (path.size() < name.size()) return false;
  const std::size_t before = path.size() - name.size();
  return (before == 0 || path[before - 1] == L'\\') && equalNames(path.substr(before), name);
}

}  // namespace zo
