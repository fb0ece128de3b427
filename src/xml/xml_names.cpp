#include "xml/xml_names.h"

#include <algorithm>

#include "text/code_units.h"
#include "xml/xml_path.h"

namespace zo {

using View = std::wstring_view;

namespace {

constexpr View kXmlUri = L"http://www.w3.org/XML/1998/namespace";
constexpr View kXmlnsUri = L"http://www.w3.org/2000/xmlns/";
constexpr const wchar_t* kNoName = L"No qualified name: it has a colon where none may stand.";

// The platform looks at the letters; only it does not see where the second part begins.
bool isQualified(View name) noexcept {
  const std::size_t colon = name.find(L':');
  if (colon == View::npos) return true;
  if (colon == 0 || colon + 1 == name.size() || name.find(L':', colon + 1) != View::npos)
    return false;
  const wchar_t c = name[colon + 1];
  return !isDigit(c) && c != L'-' && c != L'.' && c != 0xB7 && (c < 0x300 || c > 0x36F);
}

}  // namespace

bool XmlNames::fail(View place, const wchar_t* reason, int code) noexcept {
  place_ = place;
  finding_.code = code;
  finding_.reason = reason;
  return false;
}

bool XmlNames::take(XmlToken token, View piece) {
  if (token == XmlToken::StartTag || token == XmlToken::EmptyTag) {
    if (!startTag(piece)) return false;
    open_.push_back(std::move(declared_));
    declared_.clear();
    if (token == XmlToken::EmptyTag) close();
  } else if (token == XmlToken::EndTag) {
    close();
  } else if (token == XmlToken::Instruction) {
    const View target = piece.substr(2, piece.find_first_of(L" \t\r\n?", 2) - 2);
    if (target.find(L':') != View::npos)
      return fail(piece, L"The name of an instruction has a colon.");
  }
  return true;
}

bool XmlNames::startTag(View tag) {
  const View name = nameOfTag(tag);
  const bool hasAttributes = tag.find(L'=', 1 + name.size()) != View::npos;
  attributes_.clear();
  if (hasAttributes && !cutAttributes(tag)) return false;
  View uri;
  return checkName(name, uri) && (!hasAttributes || checkAttributes());
}

bool XmlNames::cutAttributes(View tag) {
  XmlAttributes attributes(tag);
  for (XmlAttribute attribute; attributes.next(attribute);) {
    if (!isQualified(attribute.name)) return fail(attribute.name, kNoName);
    if (prefixOf(attribute.name) == L"xmlns") {
      if (!declare(attribute)) return false;
    } else if (attribute.name != L"xmlns") {
      attributes_.push_back(attribute.name);
    }
    // An element that is made here may have a prefix for itself and one for each attribute.
    if (attributes_.size() > kXmlAttributes || declared_.size() > kXmlAttributes + 1)
      return fail(attribute.name, L"An element has more attributes than allowed.",
                  ZoResult::beyondLimits);
  }
  return true;
}

bool XmlNames::declare(const XmlAttribute& attribute) {
  const View prefix = withoutPrefix(attribute.name);
  if (attribute.value.empty()) return fail(attribute.name, L"A prefix stands for no namespace.");
  if (prefix == L"xmlns" || attribute.value == kXmlnsUri ||
      (prefix == L"xml") != (attribute.value == kXmlUri))
    return fail(attribute.name, L"The prefixes xml and xmlns mean something else already.");
  uris_[prefix].push_back(attribute.value);
  declared_.push_back(prefix);
  return true;
}

bool XmlNames::checkName(View name, View& uri) {
  if (name.find(L':') == View::npos) return true;
  if (!isQualified(name)) return fail(name, kNoName);
  const View prefix = prefixOf(name);
  if (prefix == L"xml") uri = kXmlUri;
  if (prefix == L"xml") return true;
  const auto found = uris_.find(prefix);
  if (found == uris_.end()) return fail(name, L"The prefix of a name is not declared.");
  uri = found->second.back();
  return true;
}

// Two prefixes may stand for one namespace.
bool XmlNames::checkAttributes() {
  known_.clear();
  for (const View name : attributes_) {
    View uri;
    if (!checkName(name, uri)) return false;
    known_.emplace_back(uri, withoutPrefix(name));
  }
  std::sort(known_.begin(), known_.end());
  const auto twice = std::adjacent_find(known_.begin(), known_.end());
  return twice == known_.end() ||
         fail(twice->second, L"An attribute that the element has already.");
}

void XmlNames::close() noexcept {
  if (open_.empty()) return;
  for (const View prefix : open_.back()) {
    const auto found = uris_.find(prefix);
    found->second.pop_back();
    if (found->second.empty()) uris_.erase(found);
  }
  open_.pop_back();
}

}  // namespace zo
