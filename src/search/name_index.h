// Names of files below a place, found ignoring case and the shape of delimiters.
//
// Threads: any that only ask.
// Cost:    finding is O(1) and the number of names that share a key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zo {

// Text in the one form in which names are compared: with backslashes.
[[nodiscard]] std::wstring withBackslashes(std::wstring_view text);
// What stands behind the last delimiter, of a text with backslashes.
[[nodiscard]] constexpr std::wstring_view lastComponent(std::wstring_view text) noexcept {
  return text.substr(text.rfind(L'\\') + 1);
}

class NameIndex {
 public:
  enum Key { kWhole, kLast };  // found by the whole path, or by its last component

  struct Name {
    std::wstring path;   // with backslashes
    std::wstring given;  // as it is written, where that differs; else empty
    bool isFolder = false;
  };

  // Of names with one key the first one in the list counts.
  NameIndex(std::vector<Name> names, Key key);

  // The first one with that key for which `fits(const Name&)`; null for none.
  template <class Fits>
  [[nodiscard]] const Name* find(std::wstring_view key, Fits fits) const {
    const std::size_t hash = hashOf(key);
    for (std::uint32_t at = buckets_[hash & (buckets_.size() - 1)]; at != 0;) {
      const Link& link = links_[at - 1];
      const Name& name = names_[at - 1];
      if (link.hash == hash && hasKey(name, key) && fits(name)) return &name;
      at = link.next;
    }
    return nullptr;
  }
  [[nodiscard]] const Name* find(std::wstring_view key) const {
    return find(key, [](const Name&) { return true; });
  }
  [[nodiscard]] const std::vector<Name>& names() const noexcept { return names_; }

 private:
  [[nodiscard]] static std::size_t hashOf(std::wstring_view key) noexcept;
  [[nodiscard]] bool hasKey(const Name& name, std::wstring_view key) const noexcept;

  struct Link {  // of a name, to the next one in its bucket
    std::size_t hash;
    std::uint32_t next;
  };

  Key key_;
  std::vector<Name> names_;
  std::vector<Link> links_;
  std::vector<std::uint32_t> buckets_;  // places of names, counted from 1
};

// In which order the names of a folder and those below it count: what lies highest first.
[[nodiscard]] bool comesFirst(std::wstring_view a, std::wstring_view b) noexcept;
// Whether a path ends in the levels of a name.
[[nodiscard]] bool endsInLevels(std::wstring_view path, std::wstring_view name) noexcept;

}  // namespace zo
