// What a ZoXMLNode holds, and the steps that it and ZoXMLClass are made of.
#pragma once

#include <zo/results.h>
#include <zo/xml/xml_node.h>
#include <zo/xml/xml_results.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "xml/dom.h"
#include "xml/xml_path.h"

namespace zo {

struct XmlNode {
  std::shared_ptr<XmlDocument> document;
  DomNode node;
};

struct XmlNodeAccess {
  static const XmlNode* of(const ZoXMLNode& node) noexcept { return node.node_.get(); }
  // Empty for no node.
  static ZoXMLNode made(const std::shared_ptr<XmlDocument>& document, DomNode node) {
    ZoXMLNode handle;
    if (node) handle.node_ = std::make_shared<XmlNode>(document, std::move(node));
    return handle;
  }
};

[[nodiscard]] DOMNodeType domType(const DomNode& node) noexcept;
// The node itself or the next one behind it that is an element.
[[nodiscard]] DomNode elementFrom(DomNode node) noexcept;

// XPath from a node. False when it is none.
[[nodiscard]] bool selectNodes(IXMLDOMNode& from, std::wstring_view xpath,
                               std::vector<DomNode>& nodes);
[[nodiscard]] DomNode selectNode(IXMLDOMNode& from, std::wstring_view xpath);
int giveNodes(const std::shared_ptr<XmlDocument>& document, std::vector<DomNode> found,
              ZoSequence<ZoXMLNode>& nodes);

// A node of this document that lies nowhere yet; null when the platform refuses.
[[nodiscard]] DomNode newNode(const XmlDocument& document, DOMNodeType type, std::wstring_view name,
                              std::wstring_view uri);

}  // namespace zo
