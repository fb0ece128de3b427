#include <zo/files/text_file.h>
#include <zo/xml/xml_class.h>

#include <algorithm>

#include "files/read_all.h"
#include "xml/decode.h"
#include "xml/node.h"
#include "xml/xml_fault.h"
#include "xml/xml_layout.h"
#include "xml/xml_state.h"
#include "xml/xml_write.h"

using zo::ComText;
using zo::DomNode;
using zo::XmlDocument;
using zo::XmlNodeAccess;
using zo::XmlState;

namespace {

using View = std::wstring_view;
using Text = zo::XmlTextParameter;

constexpr View kNoParser = L"This system has no parser for XML.";
constexpr View kNoFile = L"The file could not be read.";
constexpr View kTooLarge = L"The text is larger than allowed.";
constexpr View kEmpty = L"The document is empty.";
constexpr View kNotTaken = L"This is not well-formed XML.";

DomNode rootOf(const XmlDocument& document) {
  zo::ComPtr<IXMLDOMElement> root;
  DomNode node;
  if (document.dom->get_documentElement(root.out()) == S_OK && root) {
    *node.out() = root.get();
    node->AddRef();
  }
  return node;
}

}  // namespace

// ---- Failures ----

int XmlState::fail(int code, View reason) {
  error = {code, 0, 0, ZoString(reason), {}};
  return code;
}

int XmlState::fail(int code, View reason, zo::TextPlace place, View text) {
  const View line = zo::lineAround(text, zo::positionOf(text, place));
  error = {code, place.line, place.column, ZoString(reason),
           place.line > 0 ? ZoString(line) : ZoString()};
  return code;
}

// ---- Reading ----

namespace {

// What the DOM is given. What was decoded is in no encoding any more; with blanks instead of its
// name all places stay as they are.
ComText forDom(View text, const zo::XmlFinding& finding, const zo::XmlLayout& leftOut) {
  ComText given(leftOut.sizeWithout(text));
  leftOut.copyWithout(text, given.get());
  std::fill_n(given.get() + finding.encodingStart, finding.encodingLength, L' ');
  return given;
}

}  // namespace

int XmlState::read(View text, bool isFromUtf16, const zo::XmlAllowed& limits) {
  zo::XmlLayout layout;
  const zo::XmlFinding finding = zo::scanXml(text, limits, keepsLayout ? nullptr : &layout);
  if (finding.code != ZoResult::ok) return failFound(text, finding);
  const auto made = zo::newXmlDocument();
  if (!made) return fail(ZoResult::noXmlParser, kNoParser);
  if (!zo::parseXml(*made, forDom(text, finding, layout))) return failRefused(*made, text, finding);
  made->documentType = finding.documentType;
  made->namespaces = namespaces;
  if (!made->useNamespaces()) return fail(ZoResult::badXmlPath, L"A namespace is not taken.");
  document = made;
  isUtf16 = isFromUtf16;
  return ZoResult::ok;
}

// What is not well-formed in front of that is told first.
int XmlState::failFound(View text, const zo::XmlFinding& finding) {
  if (finding.code == ZoResult::notWellFormed) {
    const zo::XmlFault fault = zo::findXmlFault(text);
    if (fault.reason && fault.at < finding.at)
      return fail(finding.code, fault.reason, zo::placeOf(text, fault.at), text);
  }
  return fail(finding.code, finding.reason, zo::placeOf(text, finding.at), text);
}

int XmlState::failRefused(XmlDocument& refusing, View text, const zo::XmlFinding& finding) {
  constexpr int kCode = ZoResult::notWellFormed;
  if (const zo::XmlFault fault = zo::findXmlFault(text); fault.reason)
    return fail(kCode, fault.reason, zo::placeOf(text, fault.at), text);
  const ComText whole = forDom(text, finding, zo::XmlLayout());
  if (zo::parseXml(refusing, whole)) return fail(kCode, kNotTaken);
  const zo::XmlRefusal refusal = zo::whyRefused(refusing, whole);
  return fail(kCode, refusal.reason.empty() ? kNotTaken : View(refusal.reason), refusal.place,
              text);
}

int ZoXMLClass::load(const ZoFileName& file) {
  zo::DecodedText decoded;
  {
    const auto most =
        static_cast<std::int64_t>(std::min<std::uint64_t>(state_->maxBytes, zo::kXmlUnits));
    zo::AllBytes all;
    if (const int code = zo::readAll(file, most, all)) {
      const bool isTooLarge = GetLastError() == ERROR_FILE_TOO_LARGE;
      return isTooLarge ? state_->fail(ZoResult::beyondLimits, kTooLarge)
                        : state_->fail(code, kNoFile);
    }
    zo::decodeXml(all.view(), decoded);
  }
  const View text = decoded.text.view();
  if (decoded.hasFailed)
    return state_->fail(ZoResult::wrongEncoding, decoded.reason, zo::placeOf(text, text.size()),
                        text);
  return state_->read(text, decoded.isUtf16);
}

int ZoXMLClass::parse(Text text) {
  if (text.size() > zo::kXmlUnits || text.size() * 2 > state_->maxBytes)
    return state_->fail(ZoResult::beyondLimits, kTooLarge);
  return state_->read(View(text).substr(text.starts_with(L'\xFEFF') ? 1 : 0), false);
}

void ZoXMLClass::allowDocumentType(bool allowed) noexcept {
  state_->allowed.documentType = allowed;
}

void ZoXMLClass::keepLayout(bool kept) noexcept { state_->keepsLayout = kept; }

void ZoXMLClass::limit(std::uint64_t bytes, std::uint64_t depth) noexcept {
  state_->maxBytes = bytes;
  state_->allowed.depth = static_cast<unsigned int>(std::min<std::uint64_t>(depth, kMaxDepth));
}

// ---- Writing ----

int XmlState::write(View declaration, ZoXMLClass::Format format, std::wstring& out) {
  std::wstring parts;
  if (!document) return fail(ZoResult::refused, kEmpty);
  if (!zo::writeXml(*document, parts))
    return fail(ZoResult::refused, L"The platform does not write the document.");
  out = L"<?xml version=\"1.0\"" + std::wstring(declaration) + L"?>\n";
  if (format == ZoXMLClass::kIndented) {
    zo::appendXmlIndented(parts, out);
    out += L'\n';
  } else {
    out += parts;
  }
  return ZoResult::ok;
}

int ZoXMLClass::save(const ZoFileName& file, Format format) const {
  std::wstring text;
  const View encoding = state_->isUtf16 ? L" encoding=\"UTF-16\"" : L" encoding=\"UTF-8\"";
  if (const int code = state_->write(encoding, format, text)) return code;
  const int code = zoSaveText(file, text, state_->isUtf16 ? ZoTextForm::utf16 : ZoTextForm::utf8);
  return code == ZoResult::ok ? code : state_->fail(code, L"The file could not be saved.");
}

int ZoXMLClass::write(ZoString& text, Format format) const {
  std::wstring made;
  if (const int code = state_->write(L"", format, made)) return code;
  if (made.size() > ZoString::maxLength()) return state_->fail(ZoResult::beyondLimits, kTooLarge);
  text = ZoString(made);
  return ZoResult::ok;
}

// ---- The document ----

ZoXMLClass::ZoXMLClass() : state_(std::make_unique<XmlState>()) {}
ZoXMLClass::~ZoXMLClass() = default;

int ZoXMLClass::create(Text rootName) {
  if (!zo::isXmlName(rootName))
    return state_->fail(ZoResult::unfitForXml, L"This is no name for an element.");
  std::wstring text = L"<" + std::wstring(rootName);
  if (const View prefix = zo::prefixOf(rootName); !prefix.empty()) {
    const auto& known = state_->namespaces;
    const auto found =
        std::find_if(known.begin(), known.end(), [&](const auto& e) { return e.first == prefix; });
    if (found == known.end())
      return state_->fail(ZoResult::badXmlPath, L"The prefix stands for no namespace.");
    text += L" xmlns:" + found->first + L"=\"" + found->second + L'"';
  }
  return state_->read(text + L"/>", false, {kMaxDepth, false});
}

bool ZoXMLClass::isEmpty() const noexcept { return !state_->document; }
void ZoXMLClass::clear() noexcept { state_->document.reset(); }

ZoXMLNode ZoXMLClass::root() const {
  const auto& document = state_->document;
  return document ? XmlNodeAccess::made(document, rootOf(*document)) : ZoXMLNode();
}

int ZoXMLClass::setNamespace(Text prefix, Text uri) {
  if (!zo::isPlainXmlName(prefix) || prefix == L"xml" || prefix == L"xmlns" ||
      uri.find_first_of(L" <>&\"'\t\r\n") != View::npos || zo::firstUnfit(uri) != View::npos)
    return state_->fail(ZoResult::unfitForXml, L"This is no prefix, or no namespace.");
  auto changed = state_->namespaces;
  std::erase_if(changed, [&](const auto& each) { return each.first == prefix; });
  if (!uri.empty()) changed.emplace_back(prefix, uri);
  if (XmlDocument* const document = state_->document.get()) {
    changed.swap(document->namespaces);
    if (!document->useNamespaces()) {
      changed.swap(document->namespaces);
      (void)document->useNamespaces();
      return state_->fail(ZoResult::unfitForXml, L"The platform does not take this namespace.");
    }
    state_->namespaces = document->namespaces;
  } else {
    state_->namespaces = std::move(changed);
  }
  return ZoResult::ok;
}

int ZoXMLClass::get(Text path, ZoString& text) const {
  const int code = root().get(path, text);
  return code == ZoResult::ok ? code : state_->fail(code, L"Nothing is there.");
}

int ZoXMLClass::put(Text path, Text text) {
  const int code = root().put(path, text);
  return code == ZoResult::ok ? code : state_->fail(code, L"It could not be put there.");
}

int ZoXMLClass::select(Text xpath, ZoSequence<ZoXMLNode>& nodes) const {
  const auto& document = state_->document;
  if (!document) return state_->fail(ZoResult::refused, kEmpty);
  std::vector<DomNode> found;
  if (!zo::selectNodes(*document->dom.get(), xpath, found))
    return state_->fail(ZoResult::badXmlPath, L"This is no path to nodes.");
  return zo::giveNodes(document, std::move(found), nodes);
}

ZoXMLNode ZoXMLClass::selectFirst(Text xpath) const {
  const auto& document = state_->document;
  if (!document) return {};
  return XmlNodeAccess::made(document, zo::selectNode(*document->dom.get(), xpath));
}

const ZoXMLError& ZoXMLClass::error() const& noexcept { return state_->error; }
