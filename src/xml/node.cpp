#include "xml/node.h"

namespace zo {

DOMNodeType domType(const DomNode& node) noexcept {
  DOMNodeType type = NODE_INVALID;
  if (node) node->get_nodeType(&type);
  return type;
}

DomNode elementFrom(DomNode node) noexcept {
  while (node && domType(node) != NODE_ELEMENT) {
    DomNode next;
    node->get_nextSibling(next.out());
    node = std::move(next);
  }
  return node;
}

bool selectNodes(IXMLDOMNode& from, std::wstring_view xpath, std::vector<DomNode>& nodes) {
  if (xpath.find(L'\0') != std::wstring_view::npos) return false;  // the platform stops there
  ComPtr<IXMLDOMNodeList> list;
  if (FAILED(from.selectNodes(ComText(xpath).get(), list.out())) || !list) return false;
  for (DomNode node; list->nextNode(node.out()) == S_OK && node;) nodes.push_back(node);
  return true;
}

DomNode selectNode(IXMLDOMNode& from, std::wstring_view xpath) {
  DomNode node;
  if (xpath.find(L'\0') != std::wstring_view::npos) return node;
  (void)from.selectSingleNode(ComText(xpath).get(), node.out());
  return node;
}

int giveNodes(const std::shared_ptr<XmlDocument>& document, std::vector<DomNode> found,
              ZoSequence<ZoXMLNode>& nodes) {
  std::vector<ZoXMLNode> made;
  made.reserve(found.size());
  for (DomNode& node : found) made.push_back(XmlNodeAccess::made(document, std::move(node)));
  nodes.removeAll(true);
  for (ZoXMLNode& node : made)
    if (nodes.append(std::move(node)) != ZoResult::ok) throw std::bad_alloc();
  return ZoResult::ok;
}

DomNode newNode(const XmlDocument& document, DOMNodeType type, std::wstring_view name,
                std::wstring_view uri) {
  VARIANT number;
  VariantInit(&number);
  number.vt = VT_I4;
  number.lVal = type;
  DomNode node;
  (void)document.dom->createNode(number, ComText(name).get(), ComText(uri).get(), node.out());
  return node;
}

}  // namespace zo
