// Whether the names of a document mean something: they are qualified names, their prefixes are
// declared, and no attribute is there twice. Some platforms drop prefixes that they do not know.
// Needs no platform.
#pragma once

#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "xml/xml_scan.h"

namespace zo {

// What an element may have of attributes, declarations of namespaces not counted. Platforms take
// time that grows with the square of their number.
inline constexpr std::size_t kXmlAttributes = 1000;

class XmlNames {
 public:
  // Takes the tokens of a document in turn. False for what is refused: finding() is that.
  [[nodiscard]] bool take(XmlToken token, std::wstring_view piece);
  [[nodiscard]] const XmlFinding& finding() const noexcept { return finding_; }
  // Where in the piece that was taken last.
  [[nodiscard]] std::wstring_view place() const noexcept { return place_; }

 private:
  using View = std::wstring_view;

  bool fail(View place, const wchar_t* reason, int code = ZoResult::notWellFormed) noexcept;
  bool startTag(View tag);
  bool cutAttributes(View tag);
  bool declare(const XmlAttribute& attribute);
  bool checkName(View name, View& uri);
  bool checkAttributes();
  void close() noexcept;

  std::map<View, std::vector<View>> uris_;  // of the prefixes in force, the innermost last
  std::vector<std::vector<View>> open_;     // the prefixes that each open element declares
  std::vector<View> declared_;              // of the tag
  std::vector<View> attributes_;            // names, without declarations
  std::vector<std::pair<View, View>> known_;
  XmlFinding finding_;
  View place_;
};

}  // namespace zo
