#include "xml/xml_fault.h"

#include <algorithm>
#include <set>
#include <vector>

#include "text/code_units.h"
#include "xml/xml_scan.h"

namespace zo {

using View = std::wstring_view;

namespace {

constexpr View kWhite = L" \t\r\n";

class Checker {
 public:
  explicit Checker(View text) noexcept : text_(text), scanner_(text) {}

  XmlFault run() {
    XmlToken token = scanner_.next();
    for (; token != XmlToken::End; token = scanner_.next())
      if (!check(token)) return fault_;
    if (!open_.empty()) {
      fail(text_.size(), L"An element does not end.");
    } else if (!hasRoot_) {
      fail(text_.size(), L"There is no element.");
    }
    return fault_;
  }

 private:
  bool fail(std::size_t at, const wchar_t* reason) noexcept {
    fault_ = {at, reason};
    return false;
  }
  bool fail(View piece, const wchar_t* reason) noexcept {
    return fail(static_cast<std::size_t>(piece.data() - text_.data()), reason);
  }

  bool check(XmlToken token) {
    const View piece = scanner_.piece();
    switch (token) {
      case XmlToken::Text:
        return textBetween(piece);
      case XmlToken::StartTag:
      case XmlToken::EmptyTag:
        return startTag(piece, token == XmlToken::EmptyTag);
      case XmlToken::EndTag:
        return endTag(piece);
      case XmlToken::Comment: {
        const std::size_t hyphens = piece.substr(4, piece.size() - 6).find(L"--");
        return hyphens >= piece.size() - 7 ||
               fail(piece.substr(4 + hyphens), L"Two hyphens in a comment.");
      }
      case XmlToken::CharacterData:
        return !open_.empty() || fail(piece, L"A text outside of the root element.");
      case XmlToken::Instruction:
        return !isXmlDeclaration(piece) || scanner_.start() == 0 ||
               fail(piece, L"A declaration that does not stand at the front.");
      case XmlToken::DocumentType:
        hasDocumentType_ = true;
        return !hasRoot_ || fail(piece, L"A document type behind the root element.");
      default:
        return fail(piece, brokenReason(piece));
    }
  }
  static const wchar_t* brokenReason(View piece) noexcept {
    if (piece.starts_with(L"<!--")) return L"A comment does not end.";
    if (piece.starts_with(L"<![CDATA[")) return L"A CDATA section does not end.";
    if (piece.starts_with(L"<?")) return L"An instruction does not end.";
    if (piece.starts_with(L"<!DOCTYPE")) return L"A document type does not end.";
    return piece.starts_with(L"<!") ? L"No markup begins so." : L"A tag does not end.";
  }

  bool textBetween(View piece) {
    const std::size_t solid = piece.find_first_not_of(kWhite);
    if (open_.empty() && solid != View::npos)
      return fail(piece.substr(solid), L"A text outside of the root element.");
    const std::size_t end = piece.find(L"]]>");
    if (end != View::npos) return fail(piece.substr(end), L"The sign ]]> in a text.");
    return references(piece);
  }

  bool references(View piece) {
    for (std::size_t at = piece.find(L'&'); at != View::npos; at = piece.find(L'&', at + 1)) {
      const View rest = piece.substr(at);
      const std::size_t end = rest.find(L';');
      const View name = rest.substr(1, end == View::npos ? 0 : end - 1);
      if (name.empty() || name.find_first_of(L" \t\r\n&") != View::npos)
        return fail(rest, L"The sign & without a name and a semicolon behind it.");
      if (name[0] == L'#' ? !isCharacter(name.substr(1)) : !isDeclared(name))
        return fail(rest,
                    L"A reference to a character that XML does not have, or to an entity "
                    L"that is not declared.");
    }
    return true;
  }
  [[nodiscard]] bool isDeclared(View name) const noexcept {
    constexpr View kKnown[] = {L"lt", L"gt", L"amp", L"quot", L"apos"};
    return hasDocumentType_ ||
           std::find(std::begin(kKnown), std::end(kKnown), name) != std::end(kKnown);
  }
  static bool isCharacter(View digits) noexcept {
    const bool isHex = digits.starts_with(L'x');
    if (isHex) digits.remove_prefix(1);
    char32_t number = 0;
    for (const wchar_t c : digits) {
      const unsigned int digit = hexDigit(c);
      if (digit >= (isHex ? 16U : 10U) || number > 0x10FFFF) return false;
      number = number * (isHex ? 16 : 10) + digit;
    }
    return number <= 0x10FFFF && (number >= 0x20 || number == 9 || number == 10 || number == 13) &&
           (number & 0xFFFFF800) != 0xD800 && number != 0xFFFE && number != 0xFFFF;
  }

  bool startTag(View tag, bool isEmpty) {
    if (open_.empty() && hasRoot_) return fail(tag, L"A second root element.");
    hasRoot_ = true;
    const View name = nameOfTag(tag);
    if (name.empty() || !isNameBegin(name[0])) return fail(tag, L"A tag without a name.");
    View rest = tag.substr(1 + name.size());
    rest.remove_suffix(isEmpty ? 2 : 1);
    if (!attributes(rest)) return false;
    if (!isEmpty) open_.push_back(name);
    return true;
  }
  static bool isNameBegin(wchar_t c) noexcept {
    return isLetter(c) || c == L'_' || c == L':' || c >= 0x80;
  }
  bool attributes(View rest) {
    std::set<View> names;
    for (;;) {
      const std::size_t first = rest.find_first_not_of(kWhite);
      if (first == View::npos) return true;
      const View at = rest.substr(first);
      if (first == 0 || !isNameBegin(at[0]))
        return fail(at, L"Neither an attribute nor the end of the tag.");
      const View name = at.substr(0, at.find_first_of(L"= \t\r\n\"'<"));
      const std::size_t equals = at.find_first_not_of(kWhite, name.size());
      if (equals == View::npos || at[equals] != L'=')
        return fail(at, L"An attribute has no value.");
      const std::size_t quote = at.find_first_not_of(kWhite, equals + 1);
      if (quote == View::npos || (at[quote] != L'"' && at[quote] != L'\''))
        return fail(at, L"The value of an attribute is not quoted.");
      const std::size_t end = at.find(at[quote], quote + 1);
      if (end == View::npos) return fail(at, L"The value of an attribute does not end.");
      const View value = at.substr(quote + 1, end - quote - 1);
      if (const std::size_t less = value.find(L'<'); less != View::npos)
        return fail(value.substr(less), L"The sign < in the value of an attribute.");
      if (!names.insert(name).second)
        return fail(at, L"An attribute that the element has already.");
      if (!references(value)) return false;
      rest = at.substr(end + 1);
    }
  }

  bool endTag(View tag) {
    if (open_.empty()) return fail(tag, L"An end tag without a start tag.");
    const View name = nameOfTag(tag);
    if (name != open_.back())
      return fail(tag, L"An end tag that does not belong to the element that is open.");
    View rest = tag.substr(2 + name.size());
    rest.remove_suffix(1);
    if (rest.find_first_not_of(kWhite) != View::npos)
      return fail(tag, L"Something behind the name in an end tag.");
    open_.pop_back();
    return true;
  }

  View text_;
  XmlScanner scanner_;
  std::vector<View> open_;  // names of elements
  bool hasRoot_ = false, hasDocumentType_ = false;
  XmlFault fault_;
};

}  // namespace

XmlFault findXmlFault(View text) { return Checker(text).run(); }

}  // namespace zo
