// The entries of a dictionary in the order in which they are written.
#pragma once

#include <zo/text/containers/node_pool.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zo {

struct KeyedValue {
  std::uint64_t rank;  // the first units behind what all keys begin with, as a number
  std::wstring_view key;
  const ZoVariant* value;
};

// The entries in the order of their keys' code units.
[[nodiscard]] inline std::vector<KeyedValue> inOrderOfKeys(const ZoVariant::Dict& dict) {
  // The texts of the keys lie all over the memory: they are on their way when they are looked at.
  std::vector<KeyedValue> entries;
  std::vector<const ZoString*> keys;
  entries.reserve(dict.entries());
  keys.reserve(dict.entries());
  for (const auto [key, value] : dict) {
    prefetch(key.data());
    keys.push_back(&key);
    entries.push_back({0, {}, &value});
  }
  if (entries.empty()) return entries;
  for (size_t i = 0; i < keys.size(); ++i) entries[i].key = keys[i]->view();

  // Keys of one dictionary tend to begin alike: most comparisons are then one of two numbers.
  const std::wstring_view first = entries.front().key;
  size_t common = first.size();
  for (const KeyedValue& entry : entries) {
    const size_t n = std::min(common, entry.key.size());
    common = static_cast<size_t>(std::mismatch(first.begin(),
                                               first.begin() + static_cast<std::ptrdiff_t>(n),
                                               entry.key.begin())
                                     .first -
                                 first.begin());
  }
  for (KeyedValue& entry : entries) {
    for (size_t i = common; i < common + 4; ++i)
      entry.rank = entry.rank << 16 | (i < entry.key.size() ? std::uint64_t{entry.key[i]} : 0);
  }
  std::sort(entries.begin(), entries.end(), [](const KeyedValue& a, const KeyedValue& b) {
    return a.rank != b.rank ? a.rank < b.rank : a.key < b.key;
  });
  return entries;
}

}  // namespace zo
