#include "xml/xml_write.h"

#include <algorithm>

#include "xml/xml_layout.h"
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

class Indenter {
 public:
  Indenter(View xml, std::wstring& out) : layout_(layoutOf(xml)), scanner_(xml), out_(out) {}

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
    if (layout_.isLayoutIn(next_++)) {
      ++level_;
    } else {
      kept_ = 1;
    }
  }

  XmlLayout layout_;
  std::size_t next_ = 0;  // start tag
  std::size_t level_ = 0;
  std::size_t kept_ = 0;  // elements in one another that stay as they are
  bool isFirst_ = true;
  XmlScanner scanner_;
  std::wstring& out_;
};

}  // namespace

void appendXmlIndented(View xml, std::wstring& out) { Indenter(xml, out).run(); }

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
