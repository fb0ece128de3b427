#include "xml/xml_layout.h"

#include <algorithm>

namespace zo {

using View = std::wstring_view;

namespace {

bool isWhiteOnly(View text) noexcept {
  return std::all_of(text.begin(), text.end(),
                     [](wchar_t c) { return c == L' ' || c == L'\n' || c == L'\t' || c == L'\r'; });
}

bool preservesSpace(View tag) noexcept {
  constexpr View kName = L"xml:space";
  if (tag.size() < kName.size() || tag.find(kName) == View::npos) return false;
  XmlAttributes attributes(tag);
  for (XmlAttribute attribute; attributes.next(attribute);)
    if (attribute.name == kName) return attribute.value == L"preserve";
  return false;
}

}  // namespace

void XmlLayout::take(XmlToken token, View piece, std::size_t at) {
  if (token == XmlToken::Text && isWhiteOnly(piece)) {
    whites_.push_back({static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(piece.size())});
    return;
  }
  if (token == XmlToken::EndTag) {
    if (!open_.empty()) close();
    return;
  }
  const bool isText = token == XmlToken::Text || token == XmlToken::CharacterData;
  if (!open_.empty()) (isText ? open_.back().hasText : open_.back().hasElements) = true;
  if (token == XmlToken::StartTag) {
    open_.push_back({isLayout_.size(), whites_.size(), preservesSpace(piece), false});
    isLayout_.push_back(false);
  }
}

// What lies in an element that stays as it is stays, too.
void XmlLayout::close() {
  const Open& closed = open_.back();
  const bool isLayout = closed.hasElements && !closed.hasText;
  isLayout_[closed.startTag] = isLayout;
  if (!isLayout) whites_.resize(closed.whites);
  open_.pop_back();
}

std::size_t XmlLayout::sizeWithout(View xml) const noexcept {
  std::size_t size = xml.size();
  for (std::size_t i = 0; i < countOfWhites(); ++i) size -= whites_[i].size;
  return size;
}

void XmlLayout::copyWithout(View xml, wchar_t* out) const noexcept {
  std::size_t from = 0;
  for (std::size_t i = 0; i < countOfWhites(); ++i) {
    out += xml.copy(out, whites_[i].at - from, from);
    from = std::size_t{whites_[i].at} + whites_[i].size;
  }
  xml.copy(out, xml.size() - from, from);
}

XmlLayout layoutOf(View xml) {
  XmlLayout layout;
  XmlScanner scanner(xml);
  for (XmlToken token = scanner.next(); token != XmlToken::End && token != XmlToken::Broken;
       token = scanner.next())
    layout.take(token, scanner.piece(), scanner.start());
  return layout;
}

}  // namespace zo
