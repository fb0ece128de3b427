// The white space of a document that is there only for people: around the root, and between the
// elements of one that has no text of its own. Needs no platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "xml/xml_scan.h"

namespace zo {

class XmlLayout {
 public:
  // Takes the tokens of a document in turn, each with its place. The document has no more than
  // 2^32 units.
  void take(XmlToken token, std::wstring_view piece, std::size_t at);

  // After the last token: whether the white space in the element of a start tag is layout, the tags
  // counted from 0.
  [[nodiscard]] bool isLayoutIn(std::size_t startTag) const { return isLayout_[startTag]; }
  // The document without its layout; of what is not well-formed no more than white space is left
  // out.
  [[nodiscard]] std::size_t sizeWithout(std::wstring_view xml) const noexcept;
  void copyWithout(std::wstring_view xml, wchar_t* out) const noexcept;

 private:
  struct White {
    std::uint32_t at, size;
  };
  struct Open {
    std::size_t startTag, whites;  // how many there were before it
    bool hasText, hasElements;
  };

  void close();
  [[nodiscard]] std::size_t countOfWhites() const noexcept {
    return open_.empty() ? whites_.size() : open_.front().whites;  // an element without an end
  }

  std::vector<bool> isLayout_;
  std::vector<Open> open_;
  std::vector<White> whites_;  // what is layout unless an element around it turns out to have text
};

// The layout of a document.
[[nodiscard]] XmlLayout layoutOf(std::wstring_view xml);

}  // namespace zo
