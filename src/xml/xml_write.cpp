#include "xml/xml_write.h"

#include <algorithm>
#include <vector>

#include "xml/xml_scan.h"

namespace zo {

using View = std::wstring_view;

void appendXmlAsIs(View xml, std::wstring& out) {
  for (std::size_t at = 0; at < xml.size();) {
    const std::size_t end = std::min(xml.find(L'\r', at), xml.size());
    out.append(xml, at, end - at);
    at = end;
    if (at == xml.size()) return;
    out += L'\n';
    at += xml.substr(at).starts_with(L"\r\n") ? 2 : 1;
  }
}

namespace {

bool isWhiteOnly(View text) noexcept { return text.find_first_not_of(L" \t\r\n") == View::npos; }

bool preservesSpace(View tag) noexcept {
  if (tag.find(L"xml:space") == View::npos) return false;
  XmlAttributes attributes(tag);
  for (XmlAttribute attribute; attributes.next(attribute);)
    if (attribute.name == L"xml:space") return attribute.value == L"preserve";
  return false;
}

// For each start tag in turn, whether the white space in its element is layout.
std::vector<bool> layoutOf(View xml) {
  std::vector<bool> isLayout;
  struct Open {
    std::size_t number;
    bool hasText, hasElements;
  };
  std::vector<Open> open;
  XmlScanner scanner(xml);
  for (XmlToken token = scanner.next(); token != XmlToken::End && token != XmlToken::Broken;
       token = scanner.next()) {
    const bool isText = token == XmlToken::CharacterData ||
                        (token == XmlToken::Text && !isWhiteOnly(scanner.piece()));
    if (!open.empty() && isText) open.back().hasText = true;
    if (!open.empty() && token != XmlToken::Text && token != XmlToken::CharacterData &&
        token != XmlToken::EndTag)
      open.back().hasElements = true;
    if (token == XmlToken::StartTag) {
      open.push_back({isLayout.size(), preservesSpace(scanner.piece()), false});
      isLayout.push_back(false);
    } else if (token == XmlToken::EndTag && !open.empty()) {
      isLayout[open.back().number] = open.back().hasElements && !open.back().hasText;
      open.pop_back();
    }
  }
  return isLayout;
}

class Indenter {
 public:
  Indenter(View xml, std::wstring& out) : isLayout_(layoutOf(xml)), scanner_(xml), out_(out) {}

  void run() {
    for (XmlToken token = scanner_.next(); token != XmlToken::End && token != XmlToken::Broken;
         token = scanner_.next())
      take(token);
  }

 private:
  void take(XmlToken token) {
    if (kept_ > 0) {  // inside of what stays as it is
      appendXmlAsIs(scanner_.piece(), out_);
      if (token == XmlToken::StartTag) ++next_, ++kept_;
      if (token == XmlToken::EndTag) --kept_;
      return;
    }
    if (token == XmlToken::Text) return;  // layout, which is made anew
    if (token == XmlToken::EndTag && level_ > 0) --level_;
    if (!isFirst_) out_ += L'\n';
    isFirst_ = false;
    out_.append(2 * level_, L' ');
    appendXmlAsIs(scanner_.piece(), out_);
    if (token != XmlToken::StartTag) return;
    if (isLayout_[next_++]) {
      ++level_;
    } else {
      kept_ = 1;
    }
  }

  std::vector<bool> isLayout_;
  std::size_t next_ = 0;  // start tag
  std::size_t level_ = 0;
  std::size_t kept_ = 0;  // elements in one another that stay as they are
  bool isFirst_ = true;
  XmlScanner scanner_;
  std::wstring& out_;
};

}  // namespace

void appendXmlIndented(View xml, std::wstring& out) { Indenter(xml, out).run(); }

std::size_t copyWithoutLayout(View xml, wchar_t* out) {
  const std::vector<bool> isLayout = layoutOf(xml);
  std::size_t next = 0;  // start tag
  std::size_t kept = 0;  // elements in one another that stay as they are
  wchar_t* to = out;
  XmlScanner scanner(xml);
  for (XmlToken token = scanner.next(); token != XmlToken::End; token = scanner.next()) {
    const View piece = scanner.piece();
    if (token == XmlToken::EndTag && kept > 0) --kept;
    if (token == XmlToken::StartTag) {
      const bool isKept = !isLayout[next++];
      if (kept > 0 || isKept) ++kept;
    }
    if (token == XmlToken::Text && kept == 0 && isWhiteOnly(piece)) continue;
    to += piece.copy(to, piece.size());
  }
  return static_cast<std::size_t>(to - out);
}

std::wstring xmlParts(View xml, View documentType) {
  std::wstring out;
  XmlScanner scanner(xml);
  std::size_t depth = 0;
  for (XmlToken token = scanner.next(); token != XmlToken::End && token != XmlToken::Broken;
       token = scanner.next()) {
    const View piece = scanner.piece();
    if (token == XmlToken::EndTag && depth > 0) --depth;
    const bool isLeftOut = depth == 0 && (token == XmlToken::Text || isXmlDeclaration(piece));
    if (!isLeftOut) appendXmlAsIs(token == XmlToken::DocumentType ? documentType : piece, out);
    if (token == XmlToken::StartTag) ++depth;
    if (!isLeftOut && depth == 0) out += L'\n';
  }
  return out;
}

}  // namespace zo
