// XML cut into its pieces: tags, texts and the rest, without understanding them. Of a text that is
// well-formed every piece is found where it is; what cannot be cut is well-formed for nobody. Needs
// no platform.
#pragma once

#include <zo/results.h>
#include <zo/xml/xml_results.h>

#include <cstddef>
#include <iterator>
#include <string_view>

namespace zo {

enum class XmlToken {
  End,
  Text,
  StartTag,
  EmptyTag,
  EndTag,
  Comment,
  CharacterData,  // <![CDATA[...]]>
  Instruction,    // the declaration, too
  DocumentType,
  Broken,  // what begins here does not end
};

class XmlScanner {
 public:
  explicit XmlScanner(std::wstring_view text) noexcept : text_(text) {}

  XmlToken next() noexcept;
  // All of the token.
  [[nodiscard]] std::wstring_view piece() const noexcept {
    return text_.substr(start_, at_ - start_);
  }
  [[nodiscard]] std::size_t start() const noexcept { return start_; }

 private:
  XmlToken until(std::wstring_view end, std::size_t opening, XmlToken token) noexcept;
  XmlToken tag() noexcept;
  XmlToken documentType() noexcept;
  XmlToken broken() noexcept;

  std::wstring_view text_;
  std::size_t start_ = 0;
  std::size_t at_ = 0;
};

// Whether an Instruction is the declaration: "<?xml-stylesheet ...?>" is none.
template <class Char>
[[nodiscard]] bool isXmlDeclaration(std::basic_string_view<Char> piece) noexcept {
  constexpr Char kOpening[] = {'<', '?', 'x', 'm', 'l'};
  constexpr Char kWhite[] = {' ', '\t', '\r', '\n'};
  return piece.size() > std::size(kOpening) && piece.starts_with({kOpening, std::size(kOpening)}) &&
         std::basic_string_view<Char>(kWhite, std::size(kWhite)).find(piece[5]) != piece.npos;
}

// The name of a tag: piece() of a StartTag, EmptyTag or EndTag.
[[nodiscard]] std::wstring_view nameOfTag(std::wstring_view tag) noexcept;

// The attributes of a start tag, one after the other; also of a declaration.
struct XmlAttribute {
  std::wstring_view name, value;  // the value as it is written
};
class XmlAttributes {
 public:
  explicit XmlAttributes(std::wstring_view tag) noexcept;
  [[nodiscard]] bool next(XmlAttribute& attribute) noexcept;

 private:
  std::wstring_view rest_;
};

// What is looked at before the platform gets a text.
struct XmlAllowed {
  unsigned int depth = 0;
  bool documentType = false;
};
struct XmlFinding {
  int code = ZoResult::ok;
  std::size_t at = 0;               // of what is not allowed
  const wchar_t* reason = nullptr;  // a sentence
  // ` encoding="..."` in the declaration; empty where there is none.
  std::size_t encodingStart = 0;
  std::size_t encodingLength = 0;
  std::wstring_view documentType;  // all of it
};
class XmlLayout;
// Gives `layout`, if any, all tokens of a text that may be given to the platform.
[[nodiscard]] XmlFinding scanXml(std::wstring_view text, const XmlAllowed& allowed,
                                 XmlLayout* layout = nullptr);

}  // namespace zo
