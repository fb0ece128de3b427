#include "xml/xml_scan.h"

#include <algorithm>

#include "parse/csv_units.h"
#include "xml/xml_layout.h"
#include "xml/xml_names.h"
#include "xml/xml_text.h"

namespace zo {

using View = std::wstring_view;

namespace {

constexpr View kWhite = L" \t\r\n";

// The place of any of the units from a place on, or the text's length.
std::size_t findAny(View text, const FourUnits& units, std::size_t from) noexcept {
  const wchar_t* const data = text.data();
  return static_cast<std::size_t>(units.find(data + from, data + text.size()) - data);
}

}  // namespace

XmlToken XmlScanner::broken() noexcept {
  at_ = text_.size();
  return XmlToken::Broken;
}

XmlToken XmlScanner::until(View end, std::size_t opening, XmlToken token) noexcept {
  const std::size_t found = text_.find(end, start_ + opening);
  if (found == View::npos) return broken();
  at_ = found + end.size();
  return token;
}

XmlToken XmlScanner::next() noexcept {
  start_ = at_;
  const View rest = text_.substr(start_);
  if (rest.empty()) return XmlToken::End;
  if (rest[0] != L'<') {
    at_ = findAny(text_, FourUnits(L'<', L'<', L'<', L'<'), start_);
    return XmlToken::Text;
  }
  const wchar_t kind = rest.size() > 1 ? rest[1] : L'\0';
  if (kind == L'?') return until(L"?>", 2, XmlToken::Instruction);
  if (kind != L'!') return tag();
  if (rest.starts_with(L"<!--")) return until(L"-->", 4, XmlToken::Comment);
  if (rest.starts_with(L"<![CDATA[")) return until(L"]]>", 9, XmlToken::CharacterData);
  return rest.starts_with(L"<!DOCTYPE") ? documentType() : broken();
}

// Up to the '>' outside of quotes.
XmlToken XmlScanner::tag() noexcept {
  at_ = start_ + 1;
  for (;;) {
    const std::size_t found = findAny(text_, FourUnits(L'>', L'"', L'\'', L'>'), at_);
    if (found == text_.size()) return broken();
    at_ = found + 1;
    if (text_[found] == L'>') break;
    const std::size_t end = text_.find(text_[found], at_);
    if (end == View::npos) return broken();
    at_ = end + 1;
  }
  if (text_[start_ + 1] == L'/') return XmlToken::EndTag;
  return text_[at_ - 2] == L'/' ? XmlToken::EmptyTag : XmlToken::StartTag;
}

// Up to the '>' outside of quotes, comments, instructions and what lies in brackets.
XmlToken XmlScanner::documentType() noexcept {
  at_ = start_ + 2;
  for (std::size_t open = 1; open > 0;) {
    const std::size_t found = text_.find_first_of(L"<>\"'", at_);
    if (found == View::npos) return broken();
    at_ = found + 1;
    const View rest = text_.substr(found);
    View end;
    if (rest.starts_with(L"<!--")) end = L"-->";
    if (rest.starts_with(L"<?")) end = L"?>";
    if (rest[0] == L'"' || rest[0] == L'\'') end = rest.substr(0, 1);
    if (!end.empty()) {
      const std::size_t behind = text_.find(end, at_ + (end == L"-->" ? 3 : 0));
      if (behind == View::npos) return broken();
      at_ = behind + end.size();
    } else {
      rest[0] == L'<' ? ++open : --open;
    }
  }
  return XmlToken::DocumentType;
}

View nameOfTag(View tag) noexcept {
  tag.remove_prefix(tag.size() > 1 && tag[1] == L'/' ? 2 : 1);
  const auto ends = [](wchar_t c) {
    return c == L'>' || c == L'/' || c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
  };
  const auto end = std::find_if(tag.begin(), tag.end(), ends);
  return tag.substr(0, static_cast<std::size_t>(end - tag.begin()));
}

XmlAttributes::XmlAttributes(View tag) noexcept
    : rest_(tag.substr(std::min(tag.find_first_of(kWhite), tag.size()))) {}

bool XmlAttributes::next(XmlAttribute& attribute) noexcept {
  const std::size_t first = rest_.find_first_not_of(kWhite);
  const std::size_t equals = rest_.find(L'=');
  if (first == View::npos || equals == View::npos || equals < first) return false;
  attribute.name = rest_.substr(first, equals - first);
  attribute.name = attribute.name.substr(0, attribute.name.find_first_of(kWhite));
  const std::size_t quote = rest_.find_first_not_of(kWhite, equals + 1);
  if (quote == View::npos || (rest_[quote] != L'"' && rest_[quote] != L'\'')) return false;
  const std::size_t end = rest_.find(rest_[quote], quote + 1);
  if (end == View::npos) return false;
  attribute.value = rest_.substr(quote + 1, end - quote - 1);
  rest_.remove_prefix(end + 1);
  return true;
}

namespace {

// What to leave out of a declaration, so that it says nothing of an encoding that is gone.
void findEncoding(View text, View declaration, XmlFinding& finding) noexcept {
  XmlAttributes attributes(declaration);
  for (XmlAttribute attribute; attributes.next(attribute);) {
    if (attribute.name != L"encoding") continue;
    finding.encodingStart = static_cast<std::size_t>(attribute.name.data() - text.data());
    const auto end = static_cast<std::size_t>(attribute.value.data() - text.data());
    finding.encodingLength = end + attribute.value.size() + 1 - finding.encodingStart;
  }
}

XmlFinding refusal(int code, std::size_t at, const wchar_t* reason) noexcept {
  XmlFinding finding;
  finding.code = code;
  finding.at = at;
  finding.reason = reason;
  return finding;
}

}  // namespace

XmlFinding scanXml(View text, const XmlAllowed& allowed, XmlLayout* layout) {
  const std::size_t unfit = firstUnfit(text);
  if (unfit != View::npos)
    return refusal(ZoResult::notWellFormed, unfit, L"A character that XML cannot hold.");
  if (text.starts_with(L'\xFEFF'))
    return refusal(ZoResult::notWellFormed, 0, L"A second mark at the front.");
  XmlFinding finding;
  XmlScanner scanner(text);
  XmlNames names;
  unsigned int depth = 0;
  for (XmlToken token = scanner.next(); token != XmlToken::End && token != XmlToken::Broken;
       token = scanner.next()) {
    if (token == XmlToken::DocumentType && !allowed.documentType)
      return refusal(ZoResult::hasDocumentType, scanner.start(),
                     L"A document type, which is not allowed here.");
    if (token == XmlToken::DocumentType) finding.documentType = scanner.piece();
    if (scanner.start() == 0 && isXmlDeclaration(scanner.piece()))
      findEncoding(text, scanner.piece(), finding);
    const bool isElement = token == XmlToken::StartTag || token == XmlToken::EmptyTag;
    if (token == XmlToken::EndTag && depth > 0) --depth;
    if (isElement && depth >= allowed.depth)
      return refusal(ZoResult::beyondLimits, scanner.start(),
                     L"Elements lie deeper in one another than allowed.");
    if (token == XmlToken::StartTag) ++depth;
    if (!names.take(token, scanner.piece()))
      return refusal(names.finding().code,
                     static_cast<std::size_t>(names.place().data() - text.data()),
                     names.finding().reason);
    if (layout) layout->take(token, scanner.piece(), scanner.start());
  }
  return finding;
}

}  // namespace zo
