// ZoXMLNode: what it reads and writes itself.
#include <zo/xml/xml_node.h>

#include "xml/node.h"
#include "xml/xml_names.h"

using zo::ComPtr;
using zo::ComText;
using zo::DomNode;
using zo::XmlNode;
using zo::XmlNodeAccess;

namespace {

using View = std::wstring_view;
using Text = zo::XmlTextParameter;

// One of the texts that a node has; empty for an empty handle.
ZoString textOf(const XmlNode* node, HRESULT (STDMETHODCALLTYPE IXMLDOMNode::*get)(BSTR*)) {
  ComText text;
  if (node) (void)(node->node.get()->*get)(text.out());
  return ZoString(text.view());
}

ZoXMLNode elementAt(const XmlNode* node,
                    HRESULT (STDMETHODCALLTYPE IXMLDOMNode::*go)(IXMLDOMNode**)) {
  DomNode there;
  if (!node || FAILED((node->node.get()->*go)(there.out()))) return {};
  return XmlNodeAccess::made(node->document, zo::elementFrom(std::move(there)));
}

bool isFit(View text) noexcept { return zo::firstUnfit(text) == View::npos; }

bool isComment(View text) noexcept {
  return text.find(L"--") == View::npos && !text.ends_with(L'-') && isFit(text);
}

// Declarations of namespaces are made where they are needed, and by nobody else.
bool isDeclaration(View attribute) noexcept {
  return attribute == L"xmlns" || zo::prefixOf(attribute) == L"xmlns";
}

// The namespace of a name with a prefix.
int uriOf(const XmlNode& node, View name, View& uri) noexcept {
  const View prefix = zo::prefixOf(name);
  uri = View();
  if (prefix.empty()) return ZoResult::ok;
  if (prefix == L"xml") {
    uri = L"http://www.w3.org/XML/1998/namespace";
    return ZoResult::ok;
  }
  const std::wstring* const known = node.document->namespaceOf(prefix);
  if (!known) return ZoResult::badXmlPath;
  uri = *known;
  return ZoResult::ok;
}

// The attribute as a node; null where there is none.
DomNode attributeOf(const XmlNode& node, View name) {
  View uri;
  if (!zo::isXmlName(name) || uriOf(node, name, uri) != ZoResult::ok) return {};
  ComPtr<IXMLDOMNamedNodeMap> map;
  if (node.node->get_attributes(map.out()) != S_OK || !map) return {};
  DomNode attribute;
  // Some platforms keep this prefix as a part of the name.
  if (map->getQualifiedItem(ComText(zo::withoutPrefix(name)).get(), ComText(uri).get(),
                            attribute.out()) != S_OK &&
      zo::prefixOf(name) == L"xml")
    (void)map->getQualifiedItem(ComText(name).get(), ComText(View()).get(), attribute.out());
  return attribute;
}

}  // namespace

ZoXMLNode::Kind ZoXMLNode::kind() const {
  switch (node_ ? zo::domType(node_->node) : NODE_INVALID) {
    case NODE_ELEMENT:
      return kElement;
    case NODE_ATTRIBUTE:
      return kAttribute;
    case NODE_TEXT:
    case NODE_CDATA_SECTION:
      return kText;
    case NODE_COMMENT:
      return kComment;
    default:
      return node_ ? kOther : kNone;
  }
}

ZoString ZoXMLNode::name() const { return textOf(node_.get(), &IXMLDOMNode::get_nodeName); }
ZoString ZoXMLNode::localName() const { return textOf(node_.get(), &IXMLDOMNode::get_baseName); }
ZoString ZoXMLNode::namespaceUri() const {
  return textOf(node_.get(), &IXMLDOMNode::get_namespaceURI);
}
ZoString ZoXMLNode::text() const { return textOf(node_.get(), &IXMLDOMNode::get_text); }

int ZoXMLNode::setText(Text text) {
  const Kind is = kind();
  if (is == kNone || is == kOther) return ZoResult::refused;
  if (is == kComment ? !isComment(text) : !isFit(text)) return ZoResult::unfitForXml;
  return SUCCEEDED(node_->node->put_text(ComText(text).get())) ? ZoResult::ok : ZoResult::refused;
}

// ---- Attributes ----

int ZoXMLNode::getAttribute(Text name, ZoString& value) const {
  const DomNode attribute = node_ ? attributeOf(*node_, name) : DomNode();
  ComText text;
  if (!attribute || FAILED(attribute->get_text(text.out()))) return ZoResult::refused;
  value = ZoString(text.view());
  return ZoResult::ok;
}

ZoString ZoXMLNode::attribute(Text name, ZoString otherwise) const {
  (void)getAttribute(name, otherwise);  // refused: it stays
  return otherwise;
}

int ZoXMLNode::setAttribute(Text name, Text value) {
  const auto element = node_ ? zo::elementOf(node_->node) : ComPtr<IXMLDOMElement>();
  if (!element) return ZoResult::refused;
  if (!zo::isXmlName(name) || isDeclaration(name) || !isFit(value)) return ZoResult::unfitForXml;
  View uri;
  if (const int code = uriOf(*node_, name, uri)) return code;
  if (const DomNode there = attributeOf(*node_, name))
    return SUCCEEDED(there->put_text(ComText(value).get())) ? ZoResult::ok : ZoResult::refused;
  ComPtr<IXMLDOMNamedNodeMap> map;
  long count = 0;
  if (node_->node->get_attributes(map.out()) != S_OK || !map || FAILED(map->get_length(&count)) ||
      static_cast<std::size_t>(count) >= zo::kXmlAttributes)
    return ZoResult::refused;
  // Not every platform makes a node with this prefix.
  if (zo::prefixOf(name) == L"xml")
    return SUCCEEDED(element->setAttribute(ComText(name).get(), zo::asVariant(ComText(value))))
               ? ZoResult::ok
               : ZoResult::refused;
  const DomNode made = zo::newNode(*node_->document, NODE_ATTRIBUTE, name, uri);
  DomNode added;
  const bool isAdded = made && SUCCEEDED(made->put_text(ComText(value).get())) &&
                       SUCCEEDED(map->setNamedItem(made.get(), added.out()));
  return isAdded ? ZoResult::ok : ZoResult::refused;
}

int ZoXMLNode::removeAttribute(Text name) {
  if (!node_ || isDeclaration(name) || !attributeOf(*node_, name)) return ZoResult::refused;
  View uri;
  ComPtr<IXMLDOMNamedNodeMap> map;
  DomNode removed;
  if (uriOf(*node_, name, uri) != ZoResult::ok || node_->node->get_attributes(map.out()) != S_OK)
    return ZoResult::refused;
  const bool isRemoved =
      map->removeQualifiedItem(ComText(zo::withoutPrefix(name)).get(), ComText(uri).get(),
                               removed.out()) == S_OK ||
      (zo::prefixOf(name) == L"xml" &&
       map->removeQualifiedItem(ComText(name).get(), ComText(View()).get(), removed.out()) == S_OK);
  return isRemoved ? ZoResult::ok : ZoResult::refused;
}

int ZoXMLNode::attributes(ZoSequence<ZoXMLNode>& nodes) const {
  ComPtr<IXMLDOMNamedNodeMap> map;
  if (!node_ || node_->node->get_attributes(map.out()) != S_OK || !map) return ZoResult::refused;
  std::vector<DomNode> found;
  for (DomNode node; map->nextNode(node.out()) == S_OK && node;) found.push_back(node);
  return zo::giveNodes(node_->document, std::move(found), nodes);
}

// ---- Elements around it ----

ZoXMLNode ZoXMLNode::parent() const { return elementAt(node_.get(), &IXMLDOMNode::get_parentNode); }
ZoXMLNode ZoXMLNode::firstChild() const {
  return elementAt(node_.get(), &IXMLDOMNode::get_firstChild);
}
ZoXMLNode ZoXMLNode::nextSibling() const {
  return elementAt(node_.get(), &IXMLDOMNode::get_nextSibling);
}

// ---- XPath ----

int ZoXMLNode::select(Text xpath, ZoSequence<ZoXMLNode>& nodes) const {
  if (!node_) return ZoResult::refused;
  std::vector<DomNode> found;
  if (!zo::selectNodes(*node_->node.get(), xpath, found)) return ZoResult::badXmlPath;
  return zo::giveNodes(node_->document, std::move(found), nodes);
}

ZoXMLNode ZoXMLNode::selectFirst(Text xpath) const {
  if (!node_) return {};
  return XmlNodeAccess::made(node_->document, zo::selectNode(*node_->node.get(), xpath));
}

// ---- By path ----

namespace {

using Steps = std::vector<zo::XmlStep>;

int cut(const XmlNode* node, View path, Steps& steps) {
  if (!node) return ZoResult::refused;
  if (!zo::cutXmlPath(path, steps)) return ZoResult::badXmlPath;
  for (const zo::XmlStep& step : steps) {
    View uri;
    if (const int code = uriOf(*node, step.name, uri)) return code;
  }
  return ZoResult::ok;
}

// What the first `count` steps lead to.
DomNode reached(const XmlNode& node, const Steps& steps, std::size_t count) {
  if (count == 0) return node.node;
  if (!steps[count - 1].isAttribute)
    return zo::selectNode(*node.node.get(), zo::xpathOf(steps, count));
  const DomNode element = reached(node, steps, count - 1);
  return element ? attributeOf({node.document, element}, steps[count - 1].name) : DomNode();
}

// What matters of where a new element would lie.
struct Surroundings {
  unsigned int depth = 0;            // elements around it
  bool hasDefaultNamespace = false;  // declared without a prefix
};
Surroundings around(DomNode node) {
  Surroundings found;
  bool isSettled = false;
  while (zo::domType(node) == NODE_ELEMENT) {
    ++found.depth;
    ComText prefix;
    ComText uri;
    const bool hasPrefix = node->get_prefix(prefix.out()) == S_OK && !prefix.view().empty();
    if (!isSettled && !hasPrefix) {
      isSettled = true;
      found.hasDefaultNamespace = node->get_namespaceURI(uri.out()) == S_OK && !uri.view().empty();
    }
    DomNode parent;
    node->get_parentNode(parent.out());
    node = std::move(parent);
  }
  return found;
}

// The elements of the steps in one another, made aside; each of them may lie at `top`.
int makeElements(const XmlNode& top, const Steps& steps, std::size_t first, View text,
                 DomNode& made) {
  const Surroundings place = around(top.node);
  DomNode last;
  for (std::size_t i = first; i < steps.size() && !steps[i].isAttribute; ++i) {
    View uri;
    if (const int code = uriOf(top, steps[i].name, uri)) return code;
    if (zo::prefixOf(steps[i].name) == L"xml") return ZoResult::unfitForXml;
    const bool isLost = uri.empty() && place.hasDefaultNamespace;
    if (isLost || place.depth + (i - first) >= zo::kXmlDepth) return ZoResult::refused;
    const DomNode element = zo::newNode(*top.document, NODE_ELEMENT, steps[i].name, uri);
    DomNode added;
    if (!element || (last && FAILED(last->appendChild(element.get(), added.out()))))
      return ZoResult::refused;
    if (!made) made = element;
    last = element;
  }
  ZoXMLNode end = XmlNodeAccess::made(top.document, last);
  return steps.back().isAttribute ? end.setAttribute(steps.back().name, text) : end.setText(text);
}

// Whether a missing element may be made: the next one behind those that are there.
bool isNext(const XmlNode& at, const zo::XmlStep& step) {
  if (step.position < 2) return true;
  const Steps before{{step.name, step.position - 1, false}};
  return static_cast<bool>(reached(at, before, 1));
}

}  // namespace

ZoXMLNode ZoXMLNode::find(Text path) const {
  Steps steps;
  if (cut(node_.get(), path, steps) != ZoResult::ok) return {};
  return XmlNodeAccess::made(node_->document, reached(*node_, steps, steps.size()));
}

int ZoXMLNode::get(Text path, ZoString& text) const {
  Steps steps;
  if (const int code = cut(node_.get(), path, steps)) return code;
  const DomNode found = reached(*node_, steps, steps.size());
  ComText got;
  if (!found || FAILED(found->get_text(got.out()))) return ZoResult::refused;
  text = ZoString(got.view());
  return ZoResult::ok;
}

int ZoXMLNode::put(Text path, Text text) {
  Steps steps;
  if (const int code = cut(node_.get(), path, steps)) return code;
  if (!isFit(text)) return ZoResult::unfitForXml;
  std::size_t there = steps.size();
  DomNode base = reached(*node_, steps, there);
  if (base) return XmlNodeAccess::made(node_->document, base).setText(text);
  while (!base && there > 0) base = reached(*node_, steps, --there);
  const XmlNode top{node_->document, base};
  if (zo::domType(base) != NODE_ELEMENT) return ZoResult::refused;
  if (steps[there].isAttribute)
    return XmlNodeAccess::made(node_->document, base).setAttribute(steps[there].name, text);
  for (std::size_t i = there + 1; i < steps.size(); ++i)
    if (steps[i].position > 1) return ZoResult::refused;
  if (!isNext(top, steps[there])) return ZoResult::refused;
  DomNode made;
  if (const int code = makeElements(top, steps, there, text, made)) return code;
  DomNode added;
  return SUCCEEDED(base->appendChild(made.get(), added.out())) ? ZoResult::ok : ZoResult::refused;
}

// ---- Building ----

int ZoXMLNode::append(Text name, ZoXMLNode* made) {
  if (kind() != kElement) return ZoResult::refused;
  if (!zo::isXmlName(name)) return ZoResult::unfitForXml;
  DomNode element;
  if (const int code = makeElements(*node_, {{name}}, 0, L"", element)) return code;
  DomNode added;
  if (FAILED(node_->node->appendChild(element.get(), added.out()))) return ZoResult::refused;
  if (made) *made = XmlNodeAccess::made(node_->document, std::move(element));
  return ZoResult::ok;
}

int ZoXMLNode::appendComment(Text text) {
  if (kind() != kElement) return ZoResult::refused;
  if (!isComment(text)) return ZoResult::unfitForXml;
  ComPtr<IXMLDOMComment> comment;
  DomNode added;
  const bool isAdded =
      SUCCEEDED(node_->document->dom->createComment(ComText(text).get(), comment.out())) &&
      SUCCEEDED(node_->node->appendChild(comment.get(), added.out()));
  return isAdded ? ZoResult::ok : ZoResult::refused;
}

int ZoXMLNode::remove() {
  DomNode above;
  if (!node_ || FAILED(node_->node->get_parentNode(above.out()))) return ZoResult::refused;
  if (zo::domType(above) != NODE_ELEMENT) return ZoResult::refused;
  DomNode removed;
  return SUCCEEDED(above->removeChild(node_->node.get(), removed.out())) ? ZoResult::ok
                                                                         : ZoResult::refused;
}
