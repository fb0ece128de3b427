// One node of an XML document: mostly an element, else an attribute or what else a search finds.
//
//   for (ZoXMLNode part = catalog.firstChild(); !part.isEmpty(); part = part.nextSibling())
//     if (part.get(L"length/@unit", unit) == 0) ...
//
// A node is a handle: copies are the same node, and an empty handle is none. It keeps its document
// alive, also when the ZoXMLClass that it came from holds another one or is gone.
//
// Paths lead from an element to one below it, by names: "parts/part[3]/length", "part/@id". A step
// is a name, with the prefix that ZoXMLClass::setNamespace gave its namespace, and perhaps a
// position from 1; without one it is the first of that name. A name without a prefix is one in no
// namespace. The empty path is the element itself. A path is never anything else, wherever its
// names come from: what does not look like one is refused with ZoResult::badXmlPath. For searches
// there is select(), whose text must not come from outside.
//
// Errors:  int results are 0; ZoResult::refused where nothing is there, the node is empty or of a
//          kind that cannot do this, or the platform refuses; ZoResult::unfitForXml for a name or a
//          text that could not be read back: a name that is none (of the letters, those count that
//          every edition of XML takes), an element with the prefix xml, control characters but tab
//          and line ends, lone surrogates. Refused are attributes beyond
//          ZoXMLClass::kMaxAttributes, and null pointers are empty texts.
//          Out-parameters and the document are then as they were. Nothing throws but
//          std::bad_alloc.
// Threads: one at a time per document with all its nodes. Whether COM is initialised there, and
//          how, does not matter.
// Cost:    each step is a call of the platform's DOM and an allocation.
#pragma once

#include <zo/config.h>
#include <zo/text/containers/sequence.h>
#include <zo/text/string.h>
#include <zo/xml/xml_parameters.h>

#include <memory>
#include <string_view>

class ZoXMLNode;
namespace zo {
struct XmlNode;
struct XmlNodeAccess;
}  // namespace zo

class ZO_COM_API ZoXMLNode {
 public:
  enum Kind : int { kNone, kElement, kAttribute, kText, kComment, kOther };

  ZoXMLNode() noexcept = default;
  ZoXMLNode(const ZoXMLNode&) = default;
  ZoXMLNode(ZoXMLNode&&) noexcept = default;
  // A handle, not the node: document.root() = other would change nothing.
  ZoXMLNode& operator=(const ZoXMLNode&) & = default;
  ZoXMLNode& operator=(ZoXMLNode&&) & noexcept = default;
  ~ZoXMLNode() = default;

  [[nodiscard]] bool isEmpty() const noexcept { return !node_; }
  explicit operator bool() const = delete;  // write isEmpty()
  [[nodiscard]] Kind kind() const;
  // As it is written, with its prefix; without it; and the namespace, empty where it is in none.
  [[nodiscard]] ZoString name() const;
  [[nodiscard]] ZoString localName() const;
  [[nodiscard]] ZoString namespaceUri() const;

  // ---- Text ----
  // That of the node and of all below it, white space included.
  [[nodiscard]] ZoString text() const;
  // Takes the place of all that is in the node.
  [[nodiscard]] int setText(zo::XmlTextParameter text);

  // ---- Attributes of an element ----
  [[nodiscard]] int getAttribute(zo::XmlTextParameter name, ZoString& value) const;
  [[nodiscard]] ZoString attribute(zo::XmlTextParameter name, ZoString otherwise = {}) const;
  [[nodiscard]] int setAttribute(zo::XmlTextParameter name, zo::XmlTextParameter value);
  [[nodiscard]] int removeAttribute(zo::XmlTextParameter name);
  // All of them as nodes, declarations of namespaces included; replaces what the sequence holds.
  [[nodiscard]] int attributes(ZoSequence<ZoXMLNode>& nodes) const;

  // ---- Elements around it; empty where there is none ----
  [[nodiscard]] ZoXMLNode parent() const;
  [[nodiscard]] ZoXMLNode firstChild() const;
  [[nodiscard]] ZoXMLNode nextSibling() const;

  // ---- By path ----
  [[nodiscard]] int get(zo::XmlTextParameter path, ZoString& text) const;
  // The element or attribute; empty where there is none.
  [[nodiscard]] ZoXMLNode find(zo::XmlTextParameter path) const;
  // Makes what is missing: attributes, elements of a name that is not there yet, and the next one
  // of those that are ("part[3]" behind two). Refused where more is missing, and where an element
  // without a prefix would lie in one whose namespace is declared without a prefix: give that
  // namespace a prefix with setNamespace().
  [[nodiscard]] int put(zo::XmlTextParameter path, zo::XmlTextParameter text);

  // ---- Building: new elements come last ----
  [[nodiscard]] int append(zo::XmlTextParameter name, ZoXMLNode* made = nullptr);
  // Refused with ZoResult::unfitForXml if there is "--" in the text or "-" at its end.
  [[nodiscard]] int appendComment(zo::XmlTextParameter text);
  // Takes an element out of its parent; the node stays usable. Refused for the root.
  [[nodiscard]] int remove();

  // ---- XPath 1.0, from this node ----
  // Replaces what the sequence holds. Returns ZoResult::badXmlPath for what is no path to nodes.
  [[nodiscard]] int select(zo::XmlTextParameter xpath, ZoSequence<ZoXMLNode>& nodes) const;
  [[nodiscard]] ZoXMLNode selectFirst(zo::XmlTextParameter xpath) const;

 private:
  friend struct zo::XmlNodeAccess;
  std::shared_ptr<const zo::XmlNode> node_;
};
